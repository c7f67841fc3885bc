// The module's own window classes in dialog templates.

#define LOGO_STRIP(width) CONTROL "", IDC_LOGO_STRIP, "qvmodfx1Bld244LogoClass", WS_CHILD | WS_VISIBLE, 0, 0, width, 16

// The low word of the style is the control's own.
#define TRACKBAR(id, own_style, x, y, width, height) \
  CONTROL "", id, "qvmodfx1Bld244TrackbarClass", own_style | WS_CHILD | WS_VISIBLE | WS_TABSTOP, x, y, width, height
#define FADER(id, own_style, x, y, width, height) \
  CONTROL "", id, "qvmodfx1Bld244FaderClass", own_style | WS_CHILD | WS_VISIBLE | WS_TABSTOP, x, y, width, height
// Not in the walk of the Tab key: it only shows, and its menu is the mouse's.
#define METER(id, own_style, x, y, width, height) \
  CONTROL "", id, "qvmodfx1Bld244MeterClass", own_style | WS_CHILD | WS_VISIBLE, x, y, width, height
