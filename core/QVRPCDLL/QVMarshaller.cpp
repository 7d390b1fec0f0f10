#include "core/QVRPCDLL/QVMarshaller.h"

#include <cstring>

#include "platform/QVBstr.h"
#include "platform/QVTaskMem.h"

namespace {

unsigned char* Em(void* r, std::uint32_t o) { return static_cast<unsigned char*>(r) + o; }
const unsigned char* Em(const void* r, std::uint32_t o) { return static_cast<const unsigned char*>(r) + o; }

void* LePonteiro(const void* r, std::uint32_t o) {
  void* p;
  std::memcpy(&p, Em(r, o), sizeof p);
  return p;
}

void GravaContagem(const QVCampoPonteiro& c, void* r, std::uint32_t n) {
  if (c.largContagem == 2) {
    const auto v = static_cast<std::uint16_t>(n);
    std::memcpy(Em(r, c.offContagem), &v, 2);
  } else {
    std::memcpy(Em(r, c.offContagem), &n, 4);
  }
}

std::uint32_t Contagem(const QVCampoPonteiro& c, const void* r) {
  return LePonteiro(r, c.offset) != nullptr ? QVLeContagem(c, r) : 0;
}

std::size_t TamanhoElemento(const QVCampoPonteiro& c) {
  return c.tipo == EQVCampoPonteiro::Array ? c.tamElemento : c.elemento->tamanho;
}

// The record's own bytes, pointers zeroed and absent arrays counted 0.
void NormalizaFixo(const QVDescritorRegistro& d, const void* origem, unsigned char* destino) {
  for (const QVCampoPonteiro& c : d.campos) {
    if (c.tipo == EQVCampoPonteiro::Aninhado) {
      NormalizaFixo(*c.elemento, Em(origem, c.offset), destino + c.offset);
      continue;
    }
    if (c.tipo != EQVCampoPonteiro::Bstr) GravaContagem(c, destino, Contagem(c, origem));
    std::memset(destino + c.offset, 0, sizeof(void*));
  }
}

void Fixo(const QVDescritorRegistro& d, const void* r, std::string* out) {
  const std::size_t inicio = out->size();
  out->append(static_cast<const char*>(r), d.tamanho);
  NormalizaFixo(d, r, reinterpret_cast<unsigned char*>(out->data() + inicio));
}

void Anexos(const QVDescritorRegistro& d, const void* r, std::string* out) {
  for (const QVCampoPonteiro& c : d.campos) {
    switch (c.tipo) {
      case EQVCampoPonteiro::Aninhado:
        Anexos(*c.elemento, Em(r, c.offset), out);
        break;
      case EQVCampoPonteiro::Bstr: {
        auto bs = static_cast<BSTR>(LePonteiro(r, c.offset));
        const std::uint32_t n = SysStringByteLen(bs);
        out->append(reinterpret_cast<const char*>(&n), 4);
        if (n > 0) out->append(reinterpret_cast<const char*>(bs), n);
        break;
      }
      case EQVCampoPonteiro::Array: {
        const std::uint32_t n = Contagem(c, r);
        if (n > 0) out->append(static_cast<const char*>(LePonteiro(r, c.offset)), std::size_t{n} * c.tamElemento);
        break;
      }
      case EQVCampoPonteiro::Registros: {
        const std::uint32_t n = Contagem(c, r);
        const auto* itens = static_cast<const unsigned char*>(LePonteiro(r, c.offset));
        for (std::uint32_t i = 0; i < n; ++i) {
          Fixo(*c.elemento, itens + std::size_t{i} * c.elemento->tamanho, out);
          Anexos(*c.elemento, itens + std::size_t{i} * c.elemento->tamanho, out);
        }
        break;
      }
    }
  }
}

// Reads the owned data of a record whose fixed bytes are already in place
// (pointers zero). On failure the record owns what was read so far; the
// caller frees it.
class CLeitor {
 public:
  CLeitor(std::span<const std::uint8_t> dados, const QVLimitesMarshal& limites) : m_Dados(dados), m_Limites(limites) {}

  bool Anexos(const QVDescritorRegistro& d, void* r) {
    for (const QVCampoPonteiro& c : d.campos) {
      bool ok = true;
      switch (c.tipo) {
        case EQVCampoPonteiro::Aninhado:
          ok = Anexos(*c.elemento, Em(r, c.offset));
          break;
        case EQVCampoPonteiro::Bstr:
          ok = Bstr(c, r);
          break;
        case EQVCampoPonteiro::Array:
        case EQVCampoPonteiro::Registros:
          ok = Lista(c, r);
          break;
      }
      if (!ok) return false;
    }
    return true;
  }

  bool Fim() const { return m_Pos == m_Dados.size(); }

 private:
  bool Tem(std::size_t n) const { return m_Dados.size() - m_Pos >= n; }

  bool Bstr(const QVCampoPonteiro& c, void* r) {
    std::uint32_t n = 0;
    if (!Tem(4)) return false;
    std::memcpy(&n, m_Dados.data() + m_Pos, 4);
    m_Pos += 4;
    if (n == 0) return true;
    if (n % 2 != 0 || n / 2 > m_Limites.ulMaxCaracteresBstr || !Tem(n)) return false;
    BSTR bs = SysAllocStringLen(nullptr, n / 2);
    if (bs == nullptr) return false;
    std::memcpy(bs, m_Dados.data() + m_Pos, n);
    m_Pos += n;
    std::memcpy(Em(r, c.offset), &bs, sizeof bs);
    return true;
  }

  bool Lista(const QVCampoPonteiro& c, void* r) {
    const std::uint32_t n = QVLeContagem(c, r);
    if (n == 0) return true;
    const std::size_t tam = TamanhoElemento(c);
    // Each element needs at least its own bytes in the stream: a count the
    // data cannot back is refused before anything is allocated.
    if (n > m_Limites.ulMaxElementos || !Tem(std::size_t{n} * tam)) return false;
    auto* itens = static_cast<unsigned char*>(CoTaskMemAlloc(std::size_t{n} * tam));
    if (itens == nullptr) return false;
    std::memcpy(Em(r, c.offset), &itens, sizeof itens);
    if (c.tipo == EQVCampoPonteiro::Array) {
      std::memcpy(itens, m_Dados.data() + m_Pos, std::size_t{n} * tam);
      m_Pos += std::size_t{n} * tam;
      return !c.bTexto || itens[std::size_t{n} * tam - 1] == 0;
    }
    // Records: the count grows with the elements read, so that a failure
    // frees exactly what exists.
    GravaContagem(c, r, 0);
    for (std::uint32_t i = 0; i < n; ++i) {
      unsigned char* e = itens + std::size_t{i} * tam;
      if (!Tem(tam)) return false;
      std::memcpy(e, m_Dados.data() + m_Pos, tam);
      m_Pos += tam;
      ZeraPonteiros(*c.elemento, e);
      GravaContagem(c, r, i + 1);
      if (!Anexos(*c.elemento, e)) return false;
    }
    return true;
  }

 public:
  // The fixed bytes came from the other side: whatever their pointer fields
  // hold is not ours. Counts stay: they say what the stream carries.
  static void ZeraPonteiros(const QVDescritorRegistro& d, void* r) {
    for (const QVCampoPonteiro& c : d.campos) {
      if (c.tipo == EQVCampoPonteiro::Aninhado)
        ZeraPonteiros(*c.elemento, Em(r, c.offset));
      else
        std::memset(Em(r, c.offset), 0, sizeof(void*));
    }
  }

 private:
  std::span<const std::uint8_t> m_Dados;
  const QVLimitesMarshal& m_Limites;
  std::size_t m_Pos = 0;
};

}  // namespace

void QVMarshal(const QVDescritorRegistro& d, const void* registro, std::string* pFixo, std::string* pAnexos) {
  pFixo->clear();
  pAnexos->clear();
  Fixo(d, registro, pFixo);
  Anexos(d, registro, pAnexos);
}

HRESULT QVUnmarshal(const QVDescritorRegistro& d, std::span<const std::uint8_t> fixo,
                    std::span<const std::uint8_t> anexos, void* registro, const QVLimitesMarshal& limites) {
  std::memset(registro, 0, d.tamanho);
  if (fixo.size() != d.tamanho || anexos.size() > limites.uiMaxBytes) return RPC_X_BAD_STUB_DATA;
  std::memcpy(registro, fixo.data(), d.tamanho);
  CLeitor::ZeraPonteiros(d, registro);
  CLeitor leitor(anexos, limites);
  if (!leitor.Anexos(d, registro) || !leitor.Fim()) {
    QVLiberaRegistro(d, registro);
    return RPC_X_BAD_STUB_DATA;
  }
  return S_OK;
}
