// SPDX-License-Identifier: Apache-2.0
// Numbers with a decimal point. The process's locale is the simulator's, and may be one with a
// comma; what is read and written here must not depend on it.
#ifndef WATTFORGE_PLUGIN_SUPPORT_C_NUMBERS_H
#define WATTFORGE_PLUGIN_SUPPORT_C_NUMBERS_H

#include <clocale>

// While one exists, the calling thread reads and writes numbers as the C locale does; the process's
// locale stays what it is.
class mfli_c_numbers {
  public:
    mfli_c_numbers() : before_(uselocale(c_locale())) {}
    ~mfli_c_numbers() { uselocale(before_); }
    mfli_c_numbers(const mfli_c_numbers &) = delete;
    mfli_c_numbers &operator=(const mfli_c_numbers &) = delete;

  private:
    // Null, which changes nothing, if there is no memory for it.
    static locale_t c_locale() {
        static locale_t locale = nullptr;
        if (locale == nullptr) {
            locale = newlocale(LC_ALL_MASK, "C", nullptr);
        }
        return locale;
    }

    locale_t before_;
};

#endif
