// Numbers in texts mean the same whatever locale the host has set.
#pragma once

#include <clocale>

namespace lm {

// While it lives, this thread converts numbers by the rules of the "C" locale; other threads notice nothing.
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
