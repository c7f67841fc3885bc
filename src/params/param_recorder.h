// The host's automation recorder, as the parameter store sees it.
#pragma once

#include <cstdint>

namespace tervan {

class ParamRecorder {
 public:
  virtual ~ParamRecorder() = default;
  virtual void BeginEdit(std::uint32_t index) = 0;
  virtual void EditValue(std::uint32_t index, float value) = 0;
  virtual void EndEdit(std::uint32_t index) = 0;
};

}  // namespace tervan
