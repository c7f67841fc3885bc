// The module under test: loaded from the path in TERVAN_MODULE, used through its exports and through COM only.
#pragma once
#include <windows.h>

#include <dshow.h>

#include <cstring>
#include <ostream>
#include <utility>
#include <vector>

#include "directshow/com_ptr.h"
#include "effects/compressor/compressor_interface.h"
#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "shell/media_params.h"
#include "shell/plugin_interfaces.h"

namespace tervan {

// Bit for bit, so that NaNs compare too.
inline bool operator==(const CompressorSettings& a, const CompressorSettings& b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

inline void PrintTo(const CompressorSettings& s, std::ostream* out) {
  *out << s.input_gain_db << ' ' << s.output_gain_db << ' ' << s.threshold_db << ' ' << s.amount << ' '
       << s.attack_time_ms << ' ' << s.release_time_ms << ' ' << s.auto_gain_compensation << ' ' << s.smooth_saturation
       << ' ' << s.reserved << ' ' << s.bypass;
}

namespace test {

using directshow::ComPtr;
using directshow::Query;

inline constexpr CLSID kCompressorClsid = {
    0x23c9f225, 0x40ec, 0x11d2, {0x9d, 0x36, 0x00, 0xc0, 0x4f, 0x8e, 0xdc, 0x1e}};
inline constexpr CLSID kCompressorPageClsid = {
    0x23c9f227, 0x40ec, 0x11d2, {0x9d, 0x36, 0x00, 0xc0, 0x4f, 0x8e, 0xdc, 0x1e}};
inline constexpr wchar_t kCompressorName[] = L"Tervan Track Compressor";

HMODULE TheModule();

// An export by its plain name; a failed test and null when there is none.
template <class Function>
Function* Export(const char* name) {
  const FARPROC found = GetProcAddress(TheModule(), name);
  EXPECT_NE(found, nullptr) << name;
  return reinterpret_cast<Function*>(reinterpret_cast<void*>(found));
}

HRESULT GetClassObject(REFCLSID clsid, REFIID iid, void** out);
HRESULT CanUnloadNow();

// A new object of the class, made by the module's own factory.
HRESULT Create(REFCLSID clsid, IUnknown* outer, REFIID iid, void** out);

template <class Interface>
ComPtr<Interface> NewCompressor() {
  ComPtr<Interface> object;
  EXPECT_EQ(Create(kCompressorClsid, nullptr, __uuidof(Interface), object.PutVoid()), S_OK);
  return object;
}

// A method by its place in the interface's table, as hosts that know nothing of our declarations reach it.
template <class... Arguments>
HRESULT CallSlot(IUnknown* object, int slot, Arguments... arguments) {
  void* const* const table = *reinterpret_cast<void* const* const*>(object);
  const auto method = reinterpret_cast<HRESULT(STDMETHODCALLTYPE*)(IUnknown*, Arguments...)>(table[slot]);
  return method(object, arguments...);
}

// No object of the module may outlive the test that made it.
class ModuleTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(CanUnloadNow(), S_OK) << "left over from before"; }
  void TearDown() override { EXPECT_EQ(CanUnloadNow(), S_OK) << "objects leaked"; }
};

// Counts references; lives on the stack of its test. Interface is one that derives from IUnknown; `own` is its id.
template <class Interface>
class CountedFake : public Interface {
 public:
  explicit CountedFake(const IID& own = __uuidof(Interface)) : own_(own) {}
  virtual ~CountedFake() { EXPECT_EQ(references, 0); }
  STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
    const bool known = iid == IID_IUnknown || iid == own_;
    *out = known ? static_cast<Interface*>(this) : nullptr;
    if (known) AddRef();
    return known ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&references)); }
  STDMETHODIMP_(ULONG) Release() override { return static_cast<ULONG>(InterlockedDecrement(&references)); }

  LONG references = 0;

 private:
  const IID own_;
};

// A new compressor by each of its interfaces.
struct Compressor {
  ComPtr<ICompressorSettings> control = NewCompressor<ICompressorSettings>();
  ComPtr<tervan::IMediaParams> values = Query<tervan::IMediaParams>(control.Get());
  ComPtr<IDirectBufferProcess> direct = Query<IDirectBufferProcess>(control.Get());
  ComPtr<IPluginPresets> presets = Query<IPluginPresets>(control.Get());
  ComPtr<IPersistStream> persist = Query<IPersistStream>(control.Get());
};

inline constexpr LONG kHardLimiter = 8;  // the preset with a threshold of -6 dB and no make-up gain
inline constexpr double kLimit = 0.5011872336;

// A hidden window, with what is posted to it.
class Window {
 public:
  Window() : handle_(CreateWindowExW(0, L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr)) {
    EXPECT_NE(handle_, nullptr);
  }
  ~Window() { Destroy(); }
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;
  void Destroy() {
    if (handle_) DestroyWindow(std::exchange(handle_, nullptr));
  }
  operator HWND() const { return handle_; }
  // (command id, code) of each command, oldest first.
  std::vector<std::pair<int, int>> Take() {
    std::vector<std::pair<int, int>> commands;
    MSG message;
    while (PeekMessageW(&message, handle_, WM_COMMAND, WM_COMMAND, PM_REMOVE)) {
      EXPECT_EQ(message.lParam, 0);
      commands.emplace_back(LOWORD(message.wParam), HIWORD(message.wParam));
    }
    return commands;
  }

 private:
  HWND handle_;
};

inline CompressorSettings SettingsOf(ICompressorSettings& control) {
  CompressorSettings settings{};
  EXPECT_EQ(control.GetSettings(&settings), S_OK);
  return settings;
}

}  // namespace test
}  // namespace tervan
