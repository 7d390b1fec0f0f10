#include "df/qvlibex/QVDescritorRegistro.h"

#include <cstring>
#include <vector>

#include "platform/QVBstr.h"
#include "platform/QVTaskMem.h"

namespace {

unsigned char* Em(void* registro, std::uint32_t offset) { return static_cast<unsigned char*>(registro) + offset; }
const unsigned char* Em(const void* registro, std::uint32_t offset) {
  return static_cast<const unsigned char*>(registro) + offset;
}

void* LePonteiro(const void* registro, std::uint32_t offset) {
  void* p;
  std::memcpy(&p, Em(registro, offset), sizeof p);
  return p;
}

void GravaPonteiro(void* registro, std::uint32_t offset, const void* p) {
  std::memcpy(Em(registro, offset), &p, sizeof p);
}

void GravaContagem(const QVCampoPonteiro& c, void* registro, std::uint32_t n) {
  if (c.largContagem == 2) {
    const auto v = static_cast<std::uint16_t>(n);
    std::memcpy(Em(registro, c.offContagem), &v, 2);
  } else {
    std::memcpy(Em(registro, c.offContagem), &n, 4);
  }
}

// Nulls every listed pointer and count, recursively into embedded records,
// without freeing: used after a raw copy so that a failed deep copy never
// leaves pointers shared with the source.
void Desvincula(const QVDescritorRegistro& d, void* registro) {
  for (const QVCampoPonteiro& c : d.campos) {
    switch (c.tipo) {
      case EQVCampoPonteiro::Aninhado:
        Desvincula(*c.elemento, Em(registro, c.offset));
        break;
      case EQVCampoPonteiro::Bstr:
        GravaPonteiro(registro, c.offset, nullptr);
        break;
      default:
        GravaPonteiro(registro, c.offset, nullptr);
        GravaContagem(c, registro, 0);
        break;
    }
  }
}

}  // namespace

bool QVDescritorConsistente(const QVDescritorRegistro& d, std::string* pErro) {
  auto falha = [&](const QVCampoPonteiro& c, const char* motivo) {
    if (pErro != nullptr) *pErro = std::string(d.nome) + "." + c.nome + ": " + motivo;
    return false;
  };
  for (const QVCampoPonteiro& c : d.campos) {
    switch (c.tipo) {
      case EQVCampoPonteiro::Aninhado:
        if (c.elemento == nullptr) return falha(c, "sem descritor");
        if (c.offset + std::uint64_t{c.elemento->tamanho} > d.tamanho) return falha(c, "fora do registro");
        if (!QVDescritorConsistente(*c.elemento, pErro)) return false;
        break;
      case EQVCampoPonteiro::Bstr:
        if (c.offset + std::uint64_t{sizeof(void*)} > d.tamanho) return falha(c, "fora do registro");
        break;
      case EQVCampoPonteiro::Array:
      case EQVCampoPonteiro::Registros:
        if (c.offset + std::uint64_t{sizeof(void*)} > d.tamanho) return falha(c, "fora do registro");
        if (c.largContagem != 2 && c.largContagem != 4) return falha(c, "contagem sem 2 ou 4 bytes");
        if (c.offContagem + std::uint64_t{c.largContagem} > d.tamanho) return falha(c, "contagem fora do registro");
        if (c.tipo == EQVCampoPonteiro::Array && c.tamElemento == 0) return falha(c, "elemento de tamanho 0");
        if (c.tipo == EQVCampoPonteiro::Registros) {
          if (c.elemento == nullptr) return falha(c, "sem descritor");
          if (c.elemento->tamanho != c.tamElemento) return falha(c, "tamanho do elemento difere do descritor");
          if (!QVDescritorConsistente(*c.elemento, pErro)) return false;
        }
        break;
    }
  }
  return true;
}

std::uint32_t QVLeContagem(const QVCampoPonteiro& c, const void* registro) {
  if (c.largContagem == 2) {
    std::uint16_t v;
    std::memcpy(&v, Em(registro, c.offContagem), 2);
    return v;
  }
  std::uint32_t v;
  std::memcpy(&v, Em(registro, c.offContagem), 4);
  return v;
}

void QVLiberaRegistro(const QVDescritorRegistro& d, void* registro) {
  for (const QVCampoPonteiro& c : d.campos) {
    switch (c.tipo) {
      case EQVCampoPonteiro::Aninhado:
        QVLiberaRegistro(*c.elemento, Em(registro, c.offset));
        break;
      case EQVCampoPonteiro::Bstr:
        SysFreeString(static_cast<BSTR>(LePonteiro(registro, c.offset)));
        GravaPonteiro(registro, c.offset, nullptr);
        break;
      case EQVCampoPonteiro::Registros: {
        auto* itens = static_cast<unsigned char*>(LePonteiro(registro, c.offset));
        if (itens != nullptr) {
          const std::uint32_t n = QVLeContagem(c, registro);
          for (std::uint32_t i = 0; i < n; ++i)
            QVLiberaRegistro(*c.elemento, itens + std::size_t{i} * c.elemento->tamanho);
        }
        CoTaskMemFree(itens);
        GravaPonteiro(registro, c.offset, nullptr);
        GravaContagem(c, registro, 0);
        break;
      }
      case EQVCampoPonteiro::Array:
        CoTaskMemFree(LePonteiro(registro, c.offset));
        GravaPonteiro(registro, c.offset, nullptr);
        GravaContagem(c, registro, 0);
        break;
    }
  }
}

HRESULT QVCopiaRegistro(const QVDescritorRegistro& d, const void* origem, void* destino) {
  std::memmove(destino, origem, d.tamanho);
  Desvincula(d, destino);
  for (const QVCampoPonteiro& c : d.campos) {
    HRESULT hr = S_OK;
    switch (c.tipo) {
      case EQVCampoPonteiro::Aninhado:
        hr = QVCopiaRegistro(*c.elemento, Em(origem, c.offset), Em(destino, c.offset));
        break;
      case EQVCampoPonteiro::Bstr: {
        auto bs = static_cast<BSTR>(LePonteiro(origem, c.offset));
        if (bs != nullptr) {
          BSTR copia = SysAllocStringLen(bs, SysStringLen(bs));
          if (copia == nullptr) hr = E_OUTOFMEMORY;
          GravaPonteiro(destino, c.offset, copia);
        }
        break;
      }
      case EQVCampoPonteiro::Array:
      case EQVCampoPonteiro::Registros: {
        const void* itens = LePonteiro(origem, c.offset);
        const std::uint32_t n = itens != nullptr ? QVLeContagem(c, origem) : 0;
        if (n == 0) break;
        const std::size_t tam = c.tipo == EQVCampoPonteiro::Array ? c.tamElemento : c.elemento->tamanho;
        auto* copia = static_cast<unsigned char*>(CoTaskMemAlloc(std::size_t{n} * tam));
        if (copia == nullptr) {
          hr = E_OUTOFMEMORY;
          break;
        }
        GravaPonteiro(destino, c.offset, copia);
        if (c.tipo == EQVCampoPonteiro::Array) {
          std::memcpy(copia, itens, std::size_t{n} * tam);
          GravaContagem(c, destino, n);
          break;
        }
        // Records: each element is copied deeply; the count grows with them
        // so that a failure frees exactly what was made.
        for (std::uint32_t i = 0; i < n && SUCCEEDED(hr); ++i) {
          hr = QVCopiaRegistro(*c.elemento, static_cast<const unsigned char*>(itens) + i * tam, copia + i * tam);
          GravaContagem(c, destino, i + 1);  // a failed element owns nothing
        }
        break;
      }
    }
    if (FAILED(hr)) {
      QVLiberaRegistro(d, destino);
      return hr;
    }
  }
  return S_OK;
}

bool QVComparaRegistro(const QVDescritorRegistro& d, const void* a, const void* b) {
  // Fixed bytes, with every pointer field blanked on both sides.
  std::vector<unsigned char> ca(Em(a, 0), Em(a, 0) + d.tamanho);
  std::vector<unsigned char> cb(Em(b, 0), Em(b, 0) + d.tamanho);
  auto blank = [&](auto&& self, const QVDescritorRegistro& dd, unsigned char* x, unsigned char* y) -> void {
    for (const QVCampoPonteiro& c : dd.campos) {
      if (c.tipo == EQVCampoPonteiro::Aninhado) {
        self(self, *c.elemento, x + c.offset, y + c.offset);
      } else {
        std::memset(x + c.offset, 0, sizeof(void*));
        std::memset(y + c.offset, 0, sizeof(void*));
      }
    }
  };
  blank(blank, d, ca.data(), cb.data());
  if (ca != cb) return false;

  for (const QVCampoPonteiro& c : d.campos) {
    switch (c.tipo) {
      case EQVCampoPonteiro::Aninhado:
        if (!QVComparaRegistro(*c.elemento, Em(a, c.offset), Em(b, c.offset))) return false;
        break;
      case EQVCampoPonteiro::Bstr: {
        auto x = static_cast<BSTR>(LePonteiro(a, c.offset));
        auto y = static_cast<BSTR>(LePonteiro(b, c.offset));
        if (SysStringLen(x) != SysStringLen(y)) return false;
        if (SysStringLen(x) != 0 && std::memcmp(x, y, SysStringByteLen(x)) != 0) return false;
        break;
      }
      case EQVCampoPonteiro::Array:
      case EQVCampoPonteiro::Registros: {
        const auto* x = static_cast<const unsigned char*>(LePonteiro(a, c.offset));
        const auto* y = static_cast<const unsigned char*>(LePonteiro(b, c.offset));
        const std::uint32_t n = x != nullptr ? QVLeContagem(c, a) : 0;
        if ((y != nullptr ? QVLeContagem(c, b) : 0) != n) return false;
        const std::size_t tam = c.tipo == EQVCampoPonteiro::Array ? c.tamElemento : c.elemento->tamanho;
        for (std::uint32_t i = 0; i < n; ++i) {
          const bool igual = c.tipo == EQVCampoPonteiro::Array
                                 ? std::memcmp(x + i * tam, y + i * tam, tam) == 0
                                 : QVComparaRegistro(*c.elemento, x + i * tam, y + i * tam);
          if (!igual) return false;
        }
        break;
      }
    }
  }
  return true;
}
