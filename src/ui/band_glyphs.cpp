#include "ui/band_glyphs.h"

#include <algorithm>
#include <array>
#include <cwchar>

namespace tervan::ui {
namespace {

constexpr wchar_t kFace[] = L"Wingdings";
constexpr int kSize_pt = 12;
constexpr int kBands = 4;
constexpr WORD kNoGlyph = 0xFFFF;

bool HasBandGlyphs(HDC dc) {
  std::array<wchar_t, 2 * kBands + std::size(kGlyphBackdrops)> characters;
  auto next = characters.begin();
  for (const bool is_enabled : {false, true}) {
    for (int band = 0; band < kBands; ++band) *next++ = SymbolCharacter(BandGlyph(band, is_enabled));
  }
  std::ranges::transform(kGlyphBackdrops, next, SymbolCharacter);
  std::array<WORD, characters.size()> glyphs;
  const DWORD asked = GetGlyphIndicesW(dc, characters.data(), static_cast<int>(characters.size()), glyphs.data(),
                                       GGI_MARK_NONEXISTING_GLYPHS);
  return asked == characters.size() && std::ranges::find(glyphs, kNoGlyph) == glyphs.end();
}

}  // namespace

FontHandle MakeWingdingsFont() {
  const WindowDc screen(nullptr);
  LOGFONTW wanted = {};
  wanted.lfHeight = -MulDiv(kSize_pt, GetDeviceCaps(screen.Get(), LOGPIXELSY), 72);
  wanted.lfCharSet = SYMBOL_CHARSET;
  wanted.lfOutPrecision = OUT_TT_PRECIS;
  wanted.lfQuality = PROOF_QUALITY;
  lstrcpyW(wanted.lfFaceName, kFace);
  FontHandle font(CreateFontIndirectW(&wanted));
  if (!font) return nullptr;
  // The platform always makes some font; the face tells whether it is the one.
  const SelectedObject selected(screen.Get(), font.get());
  wchar_t face[LF_FACESIZE] = L"";
  GetTextFaceW(screen.Get(), LF_FACESIZE, face);
  return std::wcscmp(face, kFace) == 0 ? std::move(font) : nullptr;
}

FontHandle MakeBandGlyphFont() {
  FontHandle font = MakeWingdingsFont();
  if (!font) return nullptr;
  const WindowDc screen(nullptr);
  const SelectedObject selected(screen.Get(), font.get());
  return HasBandGlyphs(screen.Get()) ? std::move(font) : nullptr;
}

int FontHeight(HFONT font) {
  const WindowDc screen(nullptr);
  const SelectedObject selected(screen.Get(), font);
  TEXTMETRICW metrics = {};
  GetTextMetricsW(screen.Get(), &metrics);
  return metrics.tmHeight;
}

}  // namespace tervan::ui
