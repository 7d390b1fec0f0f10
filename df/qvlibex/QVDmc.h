// A reference to a record of the suite kept by month: REG_QVDMC, 64 bits.
//
//   bits  0..31  the record's position (1-based; 0: none)
//   bits 32..47  the month key (the month code iMA of the record's month)
//   bits 48..63  zero
//
// The value is what the group files store and what travels in
// _REG_DF_LISTA_QVDMCPS; 0 is no reference.
#pragma once

#include <cstdint>

// The month part of a reference; ToChave() is the key of the month's file.
struct CQVMa {
  std::uint16_t iMA = 0;
  std::uint64_t ToChave() const { return iMA; }
};

struct REG_QVDMC {
  std::uint64_t ui = 0;

  REG_QVDMC() = default;
  explicit REG_QVDMC(std::uint64_t valor) : ui(valor) {}

  REG_QVDMC& SetDMC(std::uint32_t lPosicao, std::uint16_t iMA) {
    ui = (static_cast<std::uint64_t>(iMA) << 32) | lPosicao;
    return *this;
  }
  std::uint32_t GetPosicao() const { return static_cast<std::uint32_t>(ui); }
  CQVMa GetMa() const { return CQVMa{static_cast<std::uint16_t>(ui >> 32)}; }
  bool Vazio() const { return ui == 0; }
  friend bool operator==(const REG_QVDMC&, const REG_QVDMC&) = default;
  friend auto operator<=>(const REG_QVDMC& a, const REG_QVDMC& b) { return a.ui <=> b.ui; }
};
static_assert(sizeof(REG_QVDMC) == 8);
