// Instructions above the processor's base level stand only in functions whose names say so.
#include <fnmatch.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>

#include "tests/package/shell.h"

namespace {

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

// Instructions beyond the base and their levels. Everything that is encoded for AVX and up begins with v;
// what came with it for general registers follows.
constexpr struct {
  int level;
  std::initializer_list<const char*> mnemonics;
} beyondBase[] = {
    {8, {"v*", "andn", "bextr", "bls*", "bzhi", "mulx", "pdep", "pext", "rorx", "sarx", "shlx", "shrx"}},
    {8, {"lzcnt", "movbe", "xsave*", "rd[fg]sbase", "adcx", "adox"}},
    {6, {"pcmp[ei]str[im]", "pcmpgtq", "crc32*", "popcnt*", "aes*", "pclmul*"}},
    {5,
     {"ptest", "pblend*", "blend*", "pminsb", "pmin[su]d", "pminuw", "pmaxsb", "pmax[su]d", "pmaxuw",
      "pmov[sz]x*"}},
    {5,
     {"pmulld", "pmuldq", "pinsr[bdq]", "pextr[bdq]", "insertps", "extractps", "round[ps][sd]", "dpp[sd]"}},
    {5, {"mpsadbw", "phminposuw", "packusdw", "pcmpeqq", "movntdqa"}},
    {4, {"pshufb", "phadd*", "phsub*", "pabs[bwd]", "pmaddubsw", "pmulhrsw", "psign[bwd]", "palignr"}},
    {3, {"lddqu", "movddup", "movs[hl]dup", "addsubp[sd]", "haddp[sd]", "hsubp[sd]", "fisttp*"}},
};
int levelOfMnemonic(const std::string& mnemonic) {
  for (const auto& [level, patterns] : beyondBase) {
    for (const char* pattern : patterns) {
      if (fnmatch(pattern, mnemonic.c_str(), 0) == 0) return level;
    }
  }
  return 0;
}

// The level that a function's name allows.
int levelOfName(const std::string& function) {
  const std::string name = function.substr(0, function.find('('));
  if (!name.starts_with("simd::") && !name.starts_with("lm::")) return 0;
  if (name.ends_with("_avx2")) return 8;
  if (name.ends_with("_sse41")) return 5;
  return name.ends_with("_ssse3") ? 4 : 0;
}

TEST(Instructions, AboveTheBaseLevelStandInVersionsOfThatLevelOnly) {
  int highest = 0;
  for (const auto& [function, mnemonic] : disassemble(LIBRARY_FILE)) {
    const int level = levelOfMnemonic(mnemonic);
    highest = std::max(highest, level);
    if (level > 0) {
      EXPECT_LE(level, levelOfName(function)) << mnemonic << " in " << function;
    }
  }
  EXPECT_EQ(highest, 8) << "no instruction of the highest level was seen: is the file disassembled at all?";
}

}  // namespace
