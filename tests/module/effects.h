// The four effects as hosts know them: one table, from which tests that hold for all of them draw what differs.
#pragma once
#include <functional>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "module/module.h"

namespace tervan::test {

using Bytes = std::vector<BYTE>;

// A settings record, one number per 32-bit word.
using Settings = std::vector<double>;

struct ParamRow {
  std::wstring label;
  const wchar_t* unit;
  MP_TYPE type;
  float min, max, neutral;
  int slot;                    // of the first method: get; then set and, with automation, begin, end, automated
  std::size_t word;            // of the record
  double scale = 1;            // record units per unit of the value
  const wchar_t* items = L"";  // of an enumeration
};

struct PresetRow {
  const wchar_t* name;
  Settings settings;
};

// A kind of stored record.
struct FormRow {
  UINT32 size_field;
  GUID tag;
  std::size_t words;  // of the body that a load reads; 0: it refuses the record
  Settings rest;      // what the words behind them become
};

struct EffectRow {
  const char* name;  // in names of test cases
  const wchar_t* display_name;
  CLSID clsid, page_clsid;
  IID control_iid;
  int format_slot;                           // GetFormat; SetNotifyWindow follows
  int replaced_code;                         // posted when all settings were replaced
  const wchar_t* page_name = nullptr;        // null: it has no page
  std::optional<int> set_by_host_code = {};  // posted after IMediaParams::SetParam
  bool told_of_failed_loads = false;
  std::size_t float_words = 0;  // so many words of the record are floats, those behind them integers
  Settings loaded;              // what a stored record brings
  std::vector<FormRow> forms;
  std::vector<ParamRow> params;
  std::vector<PresetRow> presets;
  bool has_automation = true;
  // Settings with an audible result: a constant level goes in, another one comes out.
  Settings audible;
  double level, audible_level;
  Settings transparent;  // leave every sample as it is
};

enum EffectIndex { kDither, kCompressor, kEq, kGate };
const std::vector<EffectRow>& Effects();  // by EffectIndex

// What the module makes: a filter or a page.
struct ClassRow {
  std::wstring name;
  CLSID clsid;
  bool is_page;
};
std::vector<ClassRow> Classes();

inline constexpr std::size_t kReservedWord = 8;  // of the compressor's record: never read nor written

GUID Id(const wchar_t* text);
Bytes RecordBytes(const EffectRow& effect, const Settings& settings);

// A new filter by each of its interfaces; those that it does not have are null.
struct Filter {
  explicit Filter(const EffectRow& effect);
  explicit Filter(EffectIndex index) : Filter(Effects()[index]) {}

  template <class... Arguments>
  HRESULT Slot(int number, Arguments... arguments) const {
    return CallSlot(control.Get(), number, arguments...);
  }
  Settings Get(INT32 in_words_not_written = 0) const;
  void Set(const Settings& settings) const;
  HRESULT SetAt(const ParamRow& param, double value) const;
  double GetAt(const ParamRow& param) const;
  HRESULT Register(HWND window, int command_id) const { return Slot(effect.format_slot + 1, window, command_id); }

  void Release() { control = nullptr, values = nullptr, direct = nullptr, presets = nullptr, persist = nullptr; }

  const EffectRow& effect;
  ComPtr<IUnknown> control;
  ComPtr<tervan::IMediaParams> values;
  ComPtr<IDirectBufferProcess> direct;
  ComPtr<IPluginPresets> presets;
  ComPtr<IPersistStream> persist;
};

// Notes its calls: "B3" begin of row 3, "V3=1.5" a value, "E3" end. What it answers does not matter.
// It may do something of its own in the middle of a call, once.
class HostRecorder final : public CountedFake<IParamRecorder> {
 public:
  HostRecorder() : CountedFake(IID_IUnknown) {}
  STDMETHODIMP BeginEdit(DWORD* indices, DWORD count) override { return Note('B', indices[count - 1]); }
  STDMETHODIMP EditValue(DWORD* indices, DWORD count, float* values) override {
    Note('V', indices[count - 1]);
    calls_ << "=" << values[count - 1];
    return E_FAIL;
  }
  STDMETHODIMP EndEdit(DWORD* indices, DWORD count) override { return Note('E', indices[count - 1]); }
  std::string Take() { return std::exchange(calls_, {}).str(); }

  char acts_at = 0;  // a call: B, V or E
  std::function<void()> act;

 private:
  HRESULT Note(char what, DWORD index) {
    calls_ << ' ' << what << index;
    if (what == acts_at) acts_at = 0, act();
    return E_FAIL;
  }
  std::ostringstream calls_;
};

class EffectTest : public ModuleTest, public testing::WithParamInterface<EffectIndex> {
 protected:
  const EffectRow& effect = Effects()[GetParam()];
};

#define TERVAN_FOR_EFFECTS(Suite, ...)                              \
  INSTANTIATE_TEST_SUITE_P(Of, Suite, testing::Values(__VA_ARGS__), \
                           [](const auto& info) { return Effects()[info.param].name; })
#define TERVAN_FOR_ALL_EFFECTS(Suite) TERVAN_FOR_EFFECTS(Suite, kDither, kCompressor, kEq, kGate)
#define TERVAN_FOR_AUTOMATED_EFFECTS(Suite) TERVAN_FOR_EFFECTS(Suite, kCompressor, kEq, kGate)

}  // namespace tervan::test
