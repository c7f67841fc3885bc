// What a window paints on before it shows on the screen, so that nothing flickers.
#pragma once

#include <windows.h>

#include <optional>

#include "ui/canvas.h"
#include "ui/gdi.h"

namespace tervan::ui {

// Keeps its bitmap from one painting to the next, and makes a new one when the window has another size.
class BackBuffer {
 public:
  BackBuffer() = default;
  ~BackBuffer();
  BackBuffer(const BackBuffer&) = delete;
  BackBuffer& operator=(const BackBuffer&) = delete;

  // False when there is no memory for the pixels, or none to draw. Draw on the canvas first, then with the dc.
  bool Prepare(HDC screen, Size size);
  Canvas& canvas() { return *canvas_; }
  HDC dc() const { return dc_; }
  // Copies it all; the screen's own clipping decides what is shown.
  void Show(HDC screen) const;

 private:
  void Release();

  HDC dc_ = nullptr;
  HGDIOBJ first_bitmap_ = nullptr;  // the one that every memory context is born with
  BitmapHandle bitmap_;
  std::optional<Canvas> canvas_;
};

// WM_PAINT in one call: paints the whole client area through the buffer with paint(HDC, Canvas&, Rect client).
template <class Paint>
void PaintBuffered(HWND window, BackBuffer& buffer, Paint&& paint) {
  const WindowPainting painting(window);
  if (!painting.Get()) return;
  RECT client;
  GetClientRect(window, &client);
  if (!buffer.Prepare(painting.Get(), {client.right, client.bottom})) return;
  paint(buffer.dc(), buffer.canvas(), FromRECT(client));
  buffer.Show(painting.Get());
}

}  // namespace tervan::ui
