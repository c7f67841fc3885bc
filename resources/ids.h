// Numbers of the module's resources and commands, for resource scripts and C++: macros, because both can read them.
#pragma once

// Dialogs
#define IDD_ABOUT 500
#define IDD_DITHER 6000
#define IDD_GATE 7000

// The logo strip at the top of every dialog
#define IDC_LOGO_STRIP 2

// About box
#define IDC_ABOUT_PRODUCT 501
#define IDC_ABOUT_VERSION 502
#define IDC_ABOUT_RIGHTS 503

// Dither page
#define IDC_DITHER_DEPTH_LABEL 6002
#define IDC_DITHER_DEPTH 6003
#define IDC_DITHER_TYPE_LABEL 6004
#define IDC_DITHER_TYPE 6005
#define IDC_DITHER_SHAPING_LABEL 6006
#define IDC_DITHER_SHAPING 6007

// Gate page
#define IDC_GATE_ATTACK 7002
#define IDC_GATE_RELEASE 7003
#define IDC_GATE_THRESHOLD_TEXT 7005
#define IDC_GATE_THRESHOLD 7008
#define IDC_GATE_RELEASE_EDIT 7009
#define IDC_GATE_ATTACK_EDIT 7010
#define IDC_GATE_THRESHOLD_LABEL 7011
#define IDC_GATE_ATTACK_LABEL 7012
#define IDC_GATE_RELEASE_LABEL 7013

// Commands of every page: preset k has ID_PRESET_FIRST + k - 1; a filter notifies its page by ID_FILTER_CHANGED
#define ID_FILTER_CHANGED 32700
#define ID_PRESET_FIRST 40500
#define ID_PRESET_LAST 40999
#define ID_HELP 41000
#define ID_ABOUT 41001
#define ID_BYPASS 41003

// Context menu of the level meter; each item's help text is the string of the same number
#define IDR_METER_MENU 162
#define ID_METER_RANGE_12_DB 40001
#define ID_METER_RANGE_24_DB 40002
#define ID_METER_RANGE_42_DB 40003
#define ID_METER_RANGE_60_DB 40004
#define ID_METER_RANGE_78_DB 40005
#define ID_METER_RANGE_90_DB 40006
#define ID_METER_RANGE_120_DB 40007
#define ID_METER_RANGE_138_DB 40008
#define ID_METER_SHOW_LABELS 40010
#define ID_METER_RESET_CLIP 40011
#define ID_METER_HOLD_PEAKS 40012
#define ID_METER_HOLD_VALLEYS 40013

// Texts of the level meter for screen readers
#define IDS_METER_RESET_CLIP 520
#define IDS_METER_CLIPPED 521

// Page titles
#define IDS_COMPRESSOR_TITLE 1000
#define IDS_EQ_TITLE 3000
#define IDS_DITHER_TITLE 6001
#define IDS_GATE_TITLE 7001

// Texts of every page; IDS_ABOUT_TITLE is a format for the product name
#define IDS_PRODUCT_NAME 510
#define IDS_ABOUT_TITLE 511
#define IDS_STRIP_ABOUT 512
#define IDS_STRIP_HELP 513
#define IDS_MENU_PRESETS 514
#define IDS_MENU_HELP 515
#define IDS_MENU_ABOUT 516
#define IDS_STRIP_BYPASS 517

// List entries of the dither page: the first one's number plus the setting
#define IDS_DITHER_DEPTH_FIRST 6010
#define IDS_DITHER_TYPE_FIRST 6020
#define IDS_DITHER_SHAPING_FIRST 6030

// Pictures of the logo strip, in two colourings
#define IDB_LOGO 24019
#define IDB_LOGO_BACKGROUND 24020
#define IDB_ALTERNATE_LOGO 24021
#define IDB_ALTERNATE_LOGO_BACKGROUND 24022

// The bypass toggle: off, on, pressed side by side. Image lists keep their colours only with LR_CREATEDIBSECTION.
#define IDB_BYPASS_DISABLED 5000
#define IDB_BYPASS_HOT 5001
#define IDB_BYPASS 5002

// EQ nodes: enabled, disabled, marked enabled, marked disabled one below the other
#define IDB_EQ_NODES 5003

// The pointing hand
#define IDC_HAND_CURSOR 4
