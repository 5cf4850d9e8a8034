// Conversion of numbers that does not depend on the locale of the host.
#pragma once

#include <clocale>

namespace lm {

// During its lifetime this thread converts numbers by the "C" locale; other threads are not affected.
class CLocaleScope {
 public:
  CLocaleScope() : plain_(newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr))) {
    if (plain_ != nullptr) previous_ = uselocale(plain_);
  }
  ~CLocaleScope() {
    if (plain_ == nullptr) return;
    uselocale(previous_);
    freelocale(plain_);
  }
  CLocaleScope(const CLocaleScope&) = delete;
  CLocaleScope& operator=(const CLocaleScope&) = delete;

 private:
  locale_t plain_;
  locale_t previous_ = nullptr;
};

}  // namespace lm
