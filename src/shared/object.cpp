#include "shared/object.h"

#include <cstdio>
#include <cstdlib>
#include <typeinfo>

#include <cxxabi.h>

namespace linewatch {

std::string classNameOf(const Object& object) {
  const char* mangled = typeid(object).name();
  int status = 0;
  const std::unique_ptr<char, decltype(&std::free)> demangled(
      abi::__cxa_demangle(mangled, nullptr, nullptr, &status), &std::free);
  std::string name = status == 0 ? demangled.get() : mangled;
  if (const auto scope = name.rfind("::"); scope != std::string::npos) name.erase(0, scope + 2);
  return name;
}

std::string Object::description() const {
  char address[32];
  std::snprintf(address, sizeof address, "%p", static_cast<const void*>(this));
  return "<" + classNameOf(*this) + ": " + address + ">";
}

}  // namespace linewatch
