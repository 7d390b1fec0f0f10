#include "tests/support/QVTesteRegistros.h"

#include "platform/QVBstr.h"

namespace {

std::uint32_t Proximo(std::uint32_t& estado) {
  estado = estado * 1664525u + 1013904223u;
  return estado >> 8;
}

void Amostra(const QVDescritorRegistro& d, unsigned char* r, std::uint32_t& estado, int nivel, bool preenche) {
  if (preenche)
    for (std::uint32_t i = 0; i < d.tamanho; ++i) r[i] = static_cast<unsigned char>(Proximo(estado));
  for (const QVCampoPonteiro& c : d.campos) {
    void* p = nullptr;
    std::uint32_t n = 1 + Proximo(estado) % 3;
    switch (c.tipo) {
      case EQVCampoPonteiro::Bstr:
        p = QVBstrFromUtf8("ação " + std::to_string(Proximo(estado) % 1000));
        break;
      case EQVCampoPonteiro::Array: {
        if (c.tamElemento == 1) n = 2 + Proximo(estado) % 7;  // byte arrays and texts: a few bytes
        auto* a = static_cast<unsigned char*>(CoTaskMemAlloc(n * c.tamElemento));
        for (std::uint32_t i = 0; i < n * c.tamElemento; ++i) a[i] = static_cast<unsigned char>('a' + Proximo(estado) % 26);
        if (c.bTexto) a[n - 1] = 0;
        p = a;
        break;
      }
      case EQVCampoPonteiro::Registros: {
        if (nivel >= 2) n = 0;
        auto* a = n == 0 ? nullptr : static_cast<unsigned char*>(CoTaskMemAlloc(n * c.elemento->tamanho));
        for (std::uint32_t i = 0; i < n; ++i) Amostra(*c.elemento, a + i * c.elemento->tamanho, estado, nivel + 1, true);
        p = a;
        break;
      }
      case EQVCampoPonteiro::Aninhado:
        // Its bytes came with the record's; what it owns is made here.
        Amostra(*c.elemento, r + c.offset, estado, nivel, false);
        continue;
    }
    std::memcpy(r + c.offset, &p, sizeof p);
    // The count, of 2 or 4 bytes, little-endian like the machine.
    if (c.tipo == EQVCampoPonteiro::Array || c.tipo == EQVCampoPonteiro::Registros) {
      if (p == nullptr) n = 0;
      std::memcpy(r + c.offContagem, &n, c.largContagem);
    }
  }
}

}  // namespace

void QVTesteAmostra(const QVDescritorRegistro& d, void* registro, std::uint32_t semente) {
  std::uint32_t estado = semente;
  Amostra(d, static_cast<unsigned char*>(registro), estado, 0, true);
}
