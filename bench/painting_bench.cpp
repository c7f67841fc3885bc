// How long the module's windows take to show something new: from the message to the pixels in the window.
//
//   painting_bench [TERVANFX.DLL]     without it the one beside this program
//
// Of several runs the fastest counts: what else the machine does can only make a run slower.
#include <windows.h>

#include <ocidl.h>

#include <bit>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <limits>
#include <random>
#include <stdexcept>

#include "directshow/com_ptr.h"
#include "resources/ids.h"
#include "ui/controls/eq_graph_messages.h"
#include "ui/controls/meter_messages.h"

#if !defined(NDEBUG) || !defined(__OPTIMIZE__)
#error "Timings of a debug build say nothing: configure an optimised one."
#endif

namespace tervan::bench {
namespace {

using directshow::ComPtr;

constexpr CLSID kEqClsid{0x8cb69a0a, 0x10e8, 0x11d2, {0x9b, 0x89, 0x00, 0x10, 0x4b, 0x8d, 0x13, 0xc2}};

constexpr int kRuns = 30;
constexpr int kUpdatesOfRun = 10;

constexpr SIZE kMeterSize{345, 33};
constexpr SIZE kGraphSize{600, 200};

void Demand(bool is_so, const char* what) {
  if (!is_so) throw std::runtime_error(what);
}

ComPtr<IUnknown> Create(HMODULE module, REFCLSID clsid) {
  const FARPROC found = GetProcAddress(module, "DllGetClassObject");
  Demand(found != nullptr, "the module exports no DllGetClassObject");
  const auto get_class_object = reinterpret_cast<decltype(&DllGetClassObject)>(reinterpret_cast<void*>(found));
  ComPtr<IClassFactory> factory;
  ComPtr<IUnknown> object;
  if (SUCCEEDED(get_class_object(clsid, IID_IClassFactory, factory.PutVoid()))) {
    factory->CreateInstance(nullptr, IID_IUnknown, object.PutVoid());
  }
  Demand(static_cast<bool>(object), "the module does not make the object");
  return object;
}

class Frame {
 public:
  Frame()
      : window_(CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0, 800, 600, nullptr,
                                nullptr, nullptr, nullptr)) {
    Demand(window_ != nullptr, "no window; is there a display?");
  }
  ~Frame() { DestroyWindow(window_); }
  Frame(const Frame&) = delete;
  Frame& operator=(const Frame&) = delete;
  HWND window() const { return window_; }

 private:
  HWND window_;
};

// What is posted meanwhile is none of an update's work.
void HandleMessages() {
  for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);) DispatchMessageW(&message);
}

void Report(const char* name, const std::function<void(int)>& update) {
  double least_ms = std::numeric_limits<double>::infinity();
  int updates = 0;
  for (int run = 0; run < kRuns; ++run) {
    HandleMessages();
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < kUpdatesOfRun; ++i) update(updates++);
    const std::chrono::duration<double, std::milli> elapsed = std::chrono::steady_clock::now() - start;
    least_ms = std::min(least_ms, elapsed.count() / kUpdatesOfRun);
  }
  std::printf("%-58s %8.3f ms\n", name, least_ms);
}

void MeasureMeter(HMODULE module) {
  constexpr DWORD kInputMeter = 0x06BC;  // as on the compressor's page
  const Frame frame;
  const HWND meter = CreateWindowExW(0, ui::kMeterClassName, L"", WS_CHILD | WS_VISIBLE | kInputMeter, 10, 10,
                                     kMeterSize.cx, kMeterSize.cy, frame.window(), nullptr, module, nullptr);
  Demand(meter != nullptr, "the module makes no meter");
  SendMessageW(meter, ui::kMeterSetChannelCount, 0, 2);
  SendMessageW(meter, ui::kMeterSetRange, MAKEWPARAM(0, 1), 32767);
  SendMessageW(meter, ui::kMeterSetDisplayRange, 0, 128);
  UpdateWindow(meter);

  const auto show = [meter](float left, float right) {
    const std::int32_t levels[] = {std::bit_cast<std::int32_t>(left), std::bit_cast<std::int32_t>(right)};
    SendMessageW(meter, ui::kMeterSetLevels, MAKEWPARAM(1, 2), reinterpret_cast<LPARAM>(levels));
    UpdateWindow(meter);
    GdiFlush();
  };
  std::mt19937 random(1);
  std::uniform_real_distribution<float> level(0.01f, 1.0f);
  Report("meter 345 x 33, two channels: levels anywhere", [&](int) { show(level(random), level(random)); });
  Report("meter 345 x 33, two channels: levels move by a pixel or so", [&](int i) {
    const float middle = 0.5f + 0.01f * static_cast<float>(i % 2);
    show(middle, middle);
  });
}

class EqPage {
 public:
  explicit EqPage(HMODULE module) : filter_(Create(module, kEqClsid)) {
    CAUUID pages{};
    const auto specify = directshow::Query<ISpecifyPropertyPages>(filter_.Get());
    Demand(specify && SUCCEEDED(specify->GetPages(&pages)) && pages.cElems == 1, "the EQ has no page");
    const CLSID page_clsid = *pages.pElems;
    CoTaskMemFree(pages.pElems);
    page_ = directshow::Query<IPropertyPage>(Create(module, page_clsid).Get());
    IUnknown* objects[] = {filter_.Get()};
    const RECT area{0, 0, 800, 600};
    Demand(page_ && SUCCEEDED(page_->SetObjects(1, objects)) &&
               SUCCEEDED(page_->Activate(frame_.window(), &area, FALSE)) && SUCCEEDED(page_->Show(SW_SHOW)),
           "the EQ's page does not open");
    SetWindowPos(Graph(), HWND_TOP, 0, 0, kGraphSize.cx, kGraphSize.cy, SWP_NOMOVE);
    UpdateWindow(frame_.window());
  }
  ~EqPage() {
    page_->Deactivate();
    page_->SetObjects(0, nullptr);
  }
  EqPage(const EqPage&) = delete;
  EqPage& operator=(const EqPage&) = delete;

  HWND Dialog() const { return GetWindow(frame_.window(), GW_CHILD); }
  HWND Graph() const { return GetDlgItem(Dialog(), IDC_EQ_GRAPH); }

 private:
  const Frame frame_;
  const ComPtr<IUnknown> filter_;
  ComPtr<IPropertyPage> page_;
};

// Drags the handle of a band around the middle of the graph, where all steps change frequency and gain.
void MeasureEqPage(HMODULE module) {
  const EqPage page(module);
  const HWND graph = page.Graph();
  RECT plot{};
  SendMessageW(graph, ui::kGraphGetPlot, 0, reinterpret_cast<LPARAM>(&plot));
  const auto mouse = [graph](UINT message, double x, double y) {
    SendMessageW(graph, message, MK_LBUTTON, MAKELPARAM(std::lround(x), std::lround(y)));
  };
  const auto drag_step = [&](int i) {
    const double angle = i * 0.1;
    mouse(WM_MOUSEMOVE, plot.right * (0.5 + 0.3 * std::cos(angle)), plot.bottom * (0.5 + 0.4 * std::sin(angle)));
  };
  constexpr double kBand3_hz = 1000.0;  // of a new filter, at 0 dB
  mouse(WM_LBUTTONDOWN, std::log(kBand3_hz / 20.0) / std::log(1000.0) * plot.right, plot.bottom / 2.0);
  Demand(GetCapture() == graph, "the handle of band 3 is not where it should be");

  std::printf("graph %ld x %ld:\n", plot.right, plot.bottom);
  Report("  painted once more", [&](int) {
    RedrawWindow(graph, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    GdiFlush();
  });
  Report("  a handle dragged: filter set, graph painted", [&](int i) {
    drag_step(i);
    GdiFlush();
  });
  Report("  the same, all controls of the page painted, too", [&](int i) {
    drag_step(i);
    RedrawWindow(page.Dialog(), nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
    GdiFlush();
  });
  mouse(WM_LBUTTONUP, plot.right / 2.0, plot.bottom / 2.0);
}

void PrintSurroundings() {
  using WineVersion = const char*(CDECL*)();
  const FARPROC found = GetProcAddress(GetModuleHandleW(L"ntdll"), "wine_get_version");
  const auto wine_version = reinterpret_cast<WineVersion>(reinterpret_cast<void*>(found));
  const HDC screen = GetDC(nullptr);
  std::printf("%s, %d bits, %d dpi, %d bits a pixel\n", found ? wine_version() : "Windows",
              static_cast<int>(8 * sizeof(void*)), GetDeviceCaps(screen, LOGPIXELSY), GetDeviceCaps(screen, BITSPIXEL));
  ReleaseDC(nullptr, screen);
}

int Main(const wchar_t* module_path) {
  const HMODULE module = LoadLibraryW(module_path);
  Demand(module != nullptr, "the module cannot be loaded");
  PrintSurroundings();
  MeasureMeter(module);
  MeasureEqPage(module);
  return 0;
}

}  // namespace
}  // namespace tervan::bench

int wmain(int count, wchar_t** arguments) {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  try {
    return tervan::bench::Main(count > 1 ? arguments[1] : L"tervanfx.dll");
  } catch (const std::exception& error) {
    std::fprintf(stderr, "painting_bench: %s\n", error.what());
    return 1;
  }
}
