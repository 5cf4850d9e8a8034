// Instructions above the processor's base level stand only in functions whose names say so.
#include <gtest/gtest.h>

#include <algorithm>
#include <regex>

#include "tests/package/shell.h"

namespace {

struct Instruction {
  std::string function;
  std::string mnemonic;
};

std::vector<Instruction> disassemble(const std::string& file) {
  std::vector<Instruction> instructions;
  std::string function;
  const std::regex head("^[0-9a-f]+ <(.*)>:$");
  const std::regex body("^ *[0-9a-f]+:\t(\\S+)(.*)");
  for (const auto& line : linesOf(std::string(OBJDUMP) + " -dwC --no-show-raw-insn " + file)) {
    std::smatch parts;
    if (std::regex_match(line, parts, head)) function = parts.str(1);
    if (std::regex_match(line, parts, body)) instructions.push_back({function, parts.str(1)});
  }
  return instructions;
}

// The level that an instruction needs beyond the base: 0 for the base itself.
int levelOfMnemonic(const std::string& mnemonic) {
  static const struct {
    int level;
    std::regex mnemonics;
  } sets[] = {
      // Everything that is encoded for AVX and up, and what came with it in general registers.
      {8, std::regex(
              "v(?!er[rw]$).*|andn|bextr|bls(i|r|msk)|mulx|pdep|pext|rorx|sarx|shlx|shrx|bzhi|lzcnt|movbe")},
      {6, std::regex("pcmp[ei]str[im]|pcmpgtq|crc32.*|popcnt.*|aes.*|pclmul.*")},
      {5, std::regex("ptest|p?blend.*|pmin(sb|sd|uw|ud)|pmax(sb|sd|uw|ud)|pmov[sz]x.*|pmulld|pmuldq|"
                     "p(insr|extr)[bdq]|(insert|extract)ps|round[ps][sd]|dpp[sd]|mpsadbw|phminposuw|packusdw|"
                     "pcmpeqq|movntdqa")},
      {4, std::regex("pshufb|ph(add|sub)(w|d|sw)|pabs[bwd]|pmaddubsw|pmulhrsw|psign[bwd]|palignr")},
      {3, std::regex("lddqu|mov(ddup|shdup|sldup)|(addsub|hadd|hsub)p[sd]|fisttp.*|monitor|mwait")},
  };
  for (const auto& set : sets) {
    if (std::regex_match(mnemonic, set.mnemonics)) return set.level;
  }
  return 0;
}

// The level that a function's name allows.
int levelOfName(const std::string& function) {
  if (std::regex_search(function, std::regex("^simd::.*_avx2\\("))) return 8;
  if (std::regex_search(function, std::regex("^simd::.*_sse41\\("))) return 5;
  if (std::regex_search(function, std::regex("^simd::.*_ssse3\\("))) return 4;
  return 0;
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
