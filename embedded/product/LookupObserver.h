// Told of what callers ask of the object factory.
#pragma once

#include <string_view>

namespace quoin::product {

class LookupObserver {
 public:
  /// GetObjectFactory() was called.
  virtual void onFactoryCall() = 0;
  /// A service was looked up.
  virtual void onLookup(std::wstring_view name, std::wstring_view second, bool found) = 0;

 protected:
  ~LookupObserver() = default;
};

}  // namespace quoin::product
