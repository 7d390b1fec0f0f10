#include "df/qvlibex/QVMoeda.h"

#include <limits>

std::string QVMoedaTexto(QVMoeda valor, int decimais, bool separadorMilhares) {
  if (decimais < 0) decimais = 0;
  if (decimais > 4) decimais = 4;
  const bool negativo = valor < 0;
  // Work on the magnitude as unsigned: -INT64_MIN does not fit a signed value.
  unsigned __int128 mag = negativo ? static_cast<unsigned __int128>(-(static_cast<__int128>(valor)))
                                   : static_cast<unsigned __int128>(valor);
  unsigned __int128 divisor = 1;
  for (int i = decimais; i < 4; ++i) divisor *= 10;
  mag = (mag + divisor / 2) / divisor;  // half away from zero
  unsigned __int128 escala = 1;
  for (int i = 0; i < decimais; ++i) escala *= 10;
  auto inteiro = static_cast<std::uint64_t>(mag / escala);
  auto fracao = static_cast<std::uint64_t>(mag % escala);

  std::string digitos = std::to_string(inteiro);
  std::string texto;
  for (std::size_t i = 0; i < digitos.size(); ++i) {
    if (separadorMilhares && i > 0 && (digitos.size() - i) % 3 == 0) texto += '.';
    texto += digitos[i];
  }
  if (decimais > 0) {
    std::string f = std::to_string(fracao);
    texto += ',';
    texto.append(static_cast<std::size_t>(decimais) - f.size(), '0');
    texto += f;
  }
  const bool zero = inteiro == 0 && fracao == 0;
  return (negativo && !zero ? "-" : "") + texto;
}

bool QVMoedaLe(std::string_view t, QVMoeda* pValor) {
  bool negativo = false;
  if (!t.empty() && (t.front() == '-' || t.front() == '+')) {
    negativo = t.front() == '-';
    t.remove_prefix(1);
  }
  if (t.empty()) return false;
  unsigned __int128 mag = 0;
  int decimais = -1;  // -1: still in the integer part
  bool algumDigito = false;
  for (char c : t) {
    if (c == '.' && decimais < 0) continue;
    if (c == ',' && decimais < 0) {
      decimais = 0;
      continue;
    }
    if (c < '0' || c > '9') return false;
    if (decimais >= 0 && ++decimais > 4) return false;
    mag = mag * 10 + static_cast<unsigned>(c - '0');
    algumDigito = true;
    if (mag > (static_cast<unsigned __int128>(1) << 64)) return false;
  }
  if (!algumDigito) return false;
  for (int i = decimais < 0 ? 0 : decimais; i < 4; ++i) mag *= 10;
  const auto limite = static_cast<unsigned __int128>(std::numeric_limits<std::int64_t>::max());
  if (mag > limite + (negativo ? 1 : 0)) return false;
  *pValor = negativo ? static_cast<QVMoeda>(-static_cast<__int128>(mag)) : static_cast<QVMoeda>(mag);
  return true;
}

bool QVMoedaMultiplica(QVMoeda a, QVMoeda b, QVMoeda* pResultado) {
  const __int128 produto = static_cast<__int128>(a) * b;
  const __int128 metade = kQVMoedaEscala / 2;
  const __int128 r = produto >= 0 ? (produto + metade) / kQVMoedaEscala : (produto - metade) / kQVMoedaEscala;
  if (r > std::numeric_limits<std::int64_t>::max() || r < std::numeric_limits<std::int64_t>::min()) return false;
  *pResultado = static_cast<QVMoeda>(r);
  return true;
}
