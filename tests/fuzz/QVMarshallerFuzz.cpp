// Fuzz target for the unmarshalling of every record kind (libFuzzer; built
// by the "fuzz" preset, never by the test run):
//
//   cmake --preset fuzz && cmake --build --preset fuzz
//   build/fuzz/tests/fuzz/zelkorin_fuzz_marshaller -max_total_time=300
//
// Input: byte 0 picks the record kind, bytes 1..2 the length of the fixed
// bytes (little-endian, clamped to what is left), the rest is the owned
// data. Whatever is accepted must marshal again into bytes that unmarshal
// to an equal record and marshal to the very same bytes; everything is
// freed (the sanitizers see a leak or a double free).
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string>

#include "core/QVRPCDLL/QVMarshaller.h"
#include "tests/support/QVTiposRegistro.h"

namespace {

std::span<const std::uint8_t> Bytes(const std::string& s) {
  return {reinterpret_cast<const std::uint8_t*>(s.data()), s.size()};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* dados, std::size_t tamanho) {
  if (tamanho < 3) return 0;
  const auto& descritores = QVDescritoresDeTodos();
  const QVDescritorRegistro& d = *descritores[dados[0] % descritores.size()];
  std::size_t nFixo = dados[1] | (static_cast<std::size_t>(dados[2]) << 8);
  nFixo = std::min(nFixo, tamanho - 3);
  const std::span<const std::uint8_t> fixo(dados + 3, nFixo);
  const std::span<const std::uint8_t> anexos(dados + 3 + nFixo, tamanho - 3 - nFixo);
  // Small limits keep each run fast; the checks are the same.
  const QVLimitesMarshal limites{.ulMaxElementos = 4096, .ulMaxCaracteresBstr = 4096, .uiMaxBytes = 1u << 20};

  alignas(16) unsigned char registro[4096];
  alignas(16) unsigned char copia[4096];
  if (d.tamanho > sizeof registro) std::abort();
  if (FAILED(QVUnmarshal(d, fixo, anexos, registro, limites))) return 0;
  std::string fixo2, anexos2, fixo3, anexos3;
  QVMarshal(d, registro, &fixo2, &anexos2);
  if (FAILED(QVUnmarshal(d, Bytes(fixo2), Bytes(anexos2), copia, limites))) std::abort();
  if (!QVComparaRegistro(d, registro, copia)) std::abort();
  QVMarshal(d, copia, &fixo3, &anexos3);
  if (fixo3 != fixo2 || anexos3 != anexos2) std::abort();
  QVLiberaRegistro(d, copia);
  QVLiberaRegistro(d, registro);
  return 0;
}
