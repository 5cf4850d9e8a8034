// Instructions above the base level occur only in kernel versions of their level.
#include <fnmatch.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <map>

#include "simd/versions.h"
#include "tests/package/shell.h"

namespace {

namespace level = simd::level;

struct Instruction {
  std::string function;
  std::string mnemonic;
};

std::vector<Instruction> disassemble(const std::string& file) {
  std::vector<Instruction> instructions;
  std::string function;
  for (const auto& line : linesOf(std::string(OBJDUMP) + " -dwC --no-show-raw-insn " + file)) {
    const auto name = line.find(" <");
    const auto tab = line.find(":\t");
    if (line.ends_with(">:") && name != std::string::npos) {
      function = line.substr(name + 2, line.size() - name - 4);
    } else if (tab != std::string::npos) {
      instructions.push_back({function, line.substr(tab + 2, line.find(' ', tab) - tab - 2)});
    }
  }
  return instructions;
}

// Instructions beyond the base and their levels. All AVX-encoded instructions begin with v; those for general
// registers that came with AVX2 follow.
constexpr struct {
  int level;
  std::initializer_list<const char*> mnemonics;
} beyondBase[] = {
    {level::avx2,
     {"v*", "andn", "bextr", "bls*", "bzhi", "mulx", "pdep", "pext", "rorx", "sarx", "shlx", "shrx"}},
    {level::avx2, {"lzcnt", "movbe", "xsave*", "rd[fg]sbase", "adcx", "adox"}},
    {level::sse42, {"pcmp[ei]str[im]", "pcmpgtq", "crc32*", "popcnt*", "aes*", "pclmul*"}},
    {level::sse41,
     {"ptest", "pblend*", "blend*", "pminsb", "pmin[su]d", "pminuw", "pmaxsb", "pmax[su]d", "pmaxuw",
      "pmov[sz]x*"}},
    {level::sse41,
     {"pmulld", "pmuldq", "pinsr[bdq]", "pextr[bdq]", "insertps", "extractps", "round[ps][sd]", "dpp[sd]"}},
    {level::sse41, {"mpsadbw", "phminposuw", "packusdw", "pcmpeqq", "movntdqa"}},
    {level::ssse3,
     {"pshufb", "phadd*", "phsub*", "pabs[bwd]", "pmaddubsw", "pmulhrsw", "psign[bwd]", "palignr"}},
    {level::sse3, {"lddqu", "movddup", "movs[hl]dup", "addsubp[sd]", "haddp[sd]", "hsubp[sd]", "fisttp*"}},
};

int levelOfMnemonic(const std::string& mnemonic) {
  for (const auto& [needed, patterns] : beyondBase) {
    for (const char* pattern : patterns) {
      if (fnmatch(pattern, mnemonic.c_str(), 0) == 0) return needed;
    }
  }
  return 0;
}

// The highest level that a function may use: its own for a kernel version, otherwise 0, the base.
int levelOfFunction(const std::string& function) {
  static const std::map<std::string, int> levels = [] {
    std::map<std::string, int> byName;
    lm::forEachKernel([&](const char*, const auto& versions) {
      for (const auto& version : versions) byName[std::string("simd::") + version.name] = version.level;
    });
    return byName;
  }();
  // The compact engine's kernels are in a namespace for each level.
  if (function.find("lm::compact::avx2::") != std::string::npos) return level::avx2;
  if (function.find("lm::compact::sse41::") != std::string::npos) return level::sse41;
  const auto found = levels.find(function.substr(0, function.find('(')));
  return found == levels.end() ? 0 : found->second;
}

TEST(Instructions, AboveTheBaseLevelOccurInVersionsOfThatLevelOnly) {
  int highest = 0;
  for (const auto& [function, mnemonic] : disassemble(LIBRARY_FILE)) {
    const int needed = levelOfMnemonic(mnemonic);
    highest = std::max(highest, needed);
    if (needed > 0) {
      EXPECT_LE(needed, levelOfFunction(function)) << mnemonic << " in " << function;
    }
  }
  EXPECT_EQ(highest, level::avx2)
      << "no instruction of the highest level was seen: is the file disassembled at all?";
}

}  // namespace
