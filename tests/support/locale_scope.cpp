#include "tests/support/locale_scope.h"

#include <bit>
#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iomanip>

namespace lm::test {

namespace {

namespace fs = std::filesystem;

// The smallest input that localedef takes: ASCII, and nothing but the number format.
void writeSources(const fs::path& folder) {
  std::ofstream charmap(folder / "ascii");
  charmap << "<code_set_name> ASCII\n<mb_cur_min> 1\n<mb_cur_max> 1\nCHARMAP\n"
          << std::hex << std::setfill('0');
  for (int code = 0; code < 128; ++code) {
    charmap << "<U" << std::setw(4) << code << "> /x" << std::setw(2) << code << '\n';
  }
  charmap << "END CHARMAP\n";
  std::ofstream(folder / "source")
      << "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \".\"\ngrouping 3;3\nEND LC_NUMERIC\n";
}

// localedef reports the missing categories as warnings (status 1); only whether the locale loads matters.
void compileLocale(const fs::path& folder) {
  const std::string path = folder.string();
  // That of the machine, on which this program may be emulated, has another byte order.
  const std::string order = std::endian::native == std::endian::big ? "--big-endian" : "--little-endian";
  const std::string command = "localedef --no-archive " + order + " -c -i " + path + "/source -f " + path +
                              "/ascii " + path + "/comma >" + path + "/messages 2>&1";
  [[maybe_unused]] const int status = std::system(command.c_str());
}

class CommaPunctuation : public std::numpunct<char> {
 public:
  explicit CommaPunctuation(bool groups) : groups_(groups) {}

 private:
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return groups_ ? "\3" : ""; }

  bool groups_;
};

}  // namespace

CommaCLocale::CommaCLocale() : previous_(std::setlocale(LC_NUMERIC, nullptr)) {
  folder_ = (fs::temp_directory_path() / "comma-locale-XXXXXX").string();
  if (mkdtemp(folder_.data()) == nullptr) return;
  writeSources(folder_);
  compileLocale(folder_);
  setenv("LOCPATH", folder_.c_str(), 1);
  active_ = std::setlocale(LC_NUMERIC, "comma") != nullptr;
}

CommaCLocale::~CommaCLocale() {
  std::setlocale(LC_NUMERIC, previous_.c_str());
  unsetenv("LOCPATH");
  std::error_code ignored;
  fs::remove_all(folder_, ignored);
}

CommaCppLocale::CommaCppLocale(bool groups)
    : previous_(std::locale::global(std::locale(std::locale::classic(), new CommaPunctuation(groups)))) {}

// A global locale with a name sets the C locale too; the numbers' rules of that one are not ours to end.
CommaCppLocale::~CommaCppLocale() {
  const std::string numbers = std::setlocale(LC_NUMERIC, nullptr);
  std::locale::global(previous_);
  std::setlocale(LC_NUMERIC, numbers.c_str());
}

}  // namespace lm::test
