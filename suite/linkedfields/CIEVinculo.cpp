#include "suite/linkedfields/CIEVinculo.h"

#include <algorithm>

#include "platform/QVCodePage.h"

namespace {

// Each kind owns a block of this many ids, in the order of the enumeration.
constexpr std::uint32_t kIdsPorBloco = 50;
constexpr EQVTipoCampoVinculo kBlocos[] = {
    EQVTipoCampoVinculo::Data,   EQVTipoCampoVinculo::Mes,    EQVTipoCampoVinculo::Texto,
    EQVTipoCampoVinculo::Valor0, EQVTipoCampoVinculo::Valor2, EQVTipoCampoVinculo::Valor4,
    EQVTipoCampoVinculo::Valor8, EQVTipoCampoVinculo::InfComplCodigo, EQVTipoCampoVinculo::Hora};

}  // namespace

EQVTipoCampoVinculo QVTipoCampoVinculo(std::int32_t id) {
  // In unsigned arithmetic an id below the base wraps far beyond the blocks.
  const std::uint32_t deslocamento = static_cast<std::uint32_t>(id) - static_cast<std::uint32_t>(kQVCampoLivreBase);
  const std::uint32_t bloco = deslocamento / kIdsPorBloco;
  return bloco < std::size(kBlocos) ? kBlocos[bloco] : EQVTipoCampoVinculo::Invalido;
}

bool QVCampoVinculo::Vazio() const {
  return QVTipoCampoVinculo(id) == EQVTipoCampoVinculo::Texto ? sTexto.empty() : valor == 0;
}

bool CIEVinculo::Vazio() const {
  return std::all_of(m_campos.begin(), m_campos.end(), [](const QVCampoVinculo& c) { return c.Vazio(); });
}

void CIEVinculo::Adiciona(const QVCampoVinculo& campo) {
  if (campo.Vazio()) return;
  // One entry per field: a field given again replaces the one held.
  const auto it = std::find_if(m_campos.begin(), m_campos.end(), [&](const auto& c) { return c.id == campo.id; });
  if (it != m_campos.end())
    *it = campo;
  else
    m_campos.push_back(campo);
}

const QVCampoVinculo* CIEVinculo::Procura(std::int32_t id) const {
  const auto it = std::find_if(m_campos.begin(), m_campos.end(), [&](const auto& c) { return c.id == id; });
  return it != m_campos.end() ? &*it : nullptr;
}

bool CIEVinculo::Corresponde(const CIEVinculo& dadosRegistro) const {
  for (const QVCampoVinculo& criterio : m_campos) {
    if (criterio.Vazio()) continue;
    const QVCampoVinculo* pCampo = dadosRegistro.Procura(criterio.id);
    if (pCampo == nullptr) return false;
    // Texts are UTF-8 here; the comparison folds the code page's letters.
    const bool bIgual = QVTipoCampoVinculo(criterio.id) == EQVTipoCampoVinculo::Texto
                            ? QVIguaisSemCaixa(criterio.sTexto, pCampo->sTexto)
                            : criterio.valor == pCampo->valor;
    if (!bIgual) return false;
  }
  return true;
}
