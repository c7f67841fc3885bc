#include "host/window_picture.h"

#include <wincodec.h>

#include <memory>
#include <type_traits>

#include "directshow/com_ptr.h"
#include "host/failure.h"
#include "host/memory_stream.h"
#include "host/text.h"

namespace tervan::host {
namespace {

using directshow::ComPtr;

void Check(HRESULT result) {
  if (FAILED(result)) throw Failure("the platform makes no picture: " + SystemMessage(result));
}

struct BitmapDeleter {
  void operator()(HBITMAP bitmap) const { DeleteObject(bitmap); }
};
using Bitmap = std::unique_ptr<std::remove_pointer_t<HBITMAP>, BitmapDeleter>;

// From the screen, not from a window: that shows what a user sees, whoever draws the frame.
Bitmap CopyFromScreen(const RECT& area) {
  const int width_px = area.right - area.left, height_px = area.bottom - area.top;
  const HDC screen = GetDC(nullptr);
  const HDC memory = CreateCompatibleDC(screen);
  Bitmap bitmap(CreateCompatibleBitmap(screen, width_px, height_px));
  const HGDIOBJ previous = SelectObject(memory, bitmap.get());
  const BOOL is_copied = BitBlt(memory, 0, 0, width_px, height_px, screen, area.left, area.top, SRCCOPY);
  SelectObject(memory, previous);
  DeleteDC(memory);
  ReleaseDC(nullptr, screen);
  if (!bitmap || !is_copied) throw Failure("the screen cannot be read");
  return bitmap;
}

}  // namespace

std::vector<std::uint8_t> PictureOf(const RECT& area) {
  const Bitmap pixels = CopyFromScreen(area);

  ComPtr<IWICImagingFactory> factory;
  Check(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IWICImagingFactory),
                         factory.PutVoid()));
  ComPtr<IWICBitmap> bitmap;
  Check(factory->CreateBitmapFromHBITMAP(pixels.get(), nullptr, WICBitmapIgnoreAlpha, bitmap.Put()));
  ComPtr<IWICBitmapEncoder> encoder;
  Check(factory->CreateEncoder(GUID_ContainerFormatPng, nullptr, encoder.Put()));
  const ComPtr<IStream> stream = MemoryStream();
  Check(encoder->Initialize(stream.Get(), WICBitmapEncoderNoCache));
  ComPtr<IWICBitmapFrameEncode> frame;
  Check(encoder->CreateNewFrame(frame.Put(), nullptr));
  Check(frame->Initialize(nullptr));
  Check(frame->SetSize(area.right - area.left, area.bottom - area.top));
  WICPixelFormatGUID format = GUID_WICPixelFormat24bppBGR;
  Check(frame->SetPixelFormat(&format));
  Check(frame->WriteSource(bitmap.Get(), nullptr));
  Check(frame->Commit());
  Check(encoder->Commit());
  return ContentOf(*stream);
}

}  // namespace tervan::host
