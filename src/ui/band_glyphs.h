// The numbers of bands as characters of the Wingdings font: white digits on a disc, or black digits in a ring.
#pragma once

#include <windows.h>

#include "ui/gdi.h"

namespace tervan::ui {

inline constexpr BYTE kEnabledBandGlyph = 140;         // of the first band; the others follow
inline constexpr BYTE kDisabledBandGlyph = 129;        // of the first band
inline constexpr BYTE kGlyphBackdrops[] = {163, 108};  // drawn in white behind a number

constexpr BYTE BandGlyph(int band, bool is_enabled) {
  return static_cast<BYTE>((is_enabled ? kEnabledBandGlyph : kDisabledBandGlyph) + band);
}

// 12 points; null when the system has no font of that name. The caller's own.
FontHandle MakeWingdingsFont();

// The same, but null when the font lacks one of the characters above: a font of that name need not be complete.
FontHandle MakeBandGlyphFont();

// A character as this font draws it: symbol fonts keep theirs in a range of their own.
constexpr wchar_t SymbolCharacter(BYTE character) { return static_cast<wchar_t>(0xF000 | character); }

// In pixels, of the tallest character.
int FontHeight(HFONT font);

}  // namespace tervan::ui
