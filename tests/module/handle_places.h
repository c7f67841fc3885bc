// Counts what is alive by the numbers of new handles, where the platform does not say.
#pragma once
#include <windows.h>

#include <algorithm>
#include <vector>

namespace tervan::test {

// The last place that new handles take, so many that they fill every gap. The low word of a handle is its place.
template <class Make, class Destroy>
int LastPlace(Make make, Destroy destroy) {
  std::vector<decltype(make())> handles(2000);
  int last = 0;
  for (auto& handle : handles) last = std::max<int>(last, LOWORD(handle = make()));
  for (const auto handle : handles) destroy(handle);
  return last;
}
inline int LastWindowPlace() { return LastPlace(CreateMenu, DestroyMenu); }
inline int LastDrawingPlace() {
  return LastPlace([] { return CreateSolidBrush(0); }, DeleteObject);
}

}  // namespace tervan::test
