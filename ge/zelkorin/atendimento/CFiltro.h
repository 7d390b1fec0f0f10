// The per-call decision of a search: whether a stored service call matches
// the caller's filter (_REG_FILTRO_ATENDIMENTO_PS).
//
// A filter shares the session of the server that searches (Inicializa(this)
// of the session base); OnInicializa then reads, once per search, what every
// call is tested against: the branches active for the session's user, the
// executor list (only with bListarExecutoresPermissoesIguais) and the
// filter's service (only with bVerificarTituloServico). Master data that a
// test needs per call (a client's municipality, a service's classification)
// is read the first time a pointer is met and kept for the rest of the
// search.
//
// Rules of every test: a numeric field of the filter that is zero, and a
// text that is empty, restricts nothing; dates are day numbers compared as
// numbers. A failure while testing a call (a master-data read, a service or
// text read) is logged and thrown as _com_error with its status: the search
// cannot answer without it, and the call frame turns it into the method's
// status.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "ge/zelkorin/atendimento/CGeServidorAtendimentoDatabase.h"
#include "suite/hostlink/CQVBaseParaRotinas.h"
#include "suite/linkedfields/CIEVinculo.h"
#include "suite/masterdata/QVDadosDF.h"
#include "suite/moduleutil/CRegFiltroAtendimento.h"

class CFiltro : public CQVBaseParaRotinas {
 public:
  // The filter is copied; its arrays (arrMA, arrlPos, the linked-field
  // texts) stay the caller's and must live as long as the filter.
  explicit CFiltro(const _REG_FILTRO_ATENDIMENTO_PS& filtro);

  // Whether the stored call at lPosicao of month iMA matches, its services
  // read from pGEAtendimentoDB, whose current month is iMA. Throws
  // _com_error on a failed read.
  bool Filtra(const REG_ATENDIMENTO_V2& atendimento, std::uint16_t iMA, std::uint32_t lPosicao,
              CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  // Whether one service of a call matches the service criteria.
  bool FiltraServico(const REG_SERVICO_ATENDIMENTO_V3& servico, CGeServidorAtendimentoDatabase* pGEAtendimentoDB);

  const std::vector<std::uint32_t>& GetListaExecutores() const { return m_listaExecutores; }

 protected:
  HRESULT OnInicializa() override;

 private:
  [[nodiscard]] HRESULT LeListaExecutores();
  bool FiltraListaServicos(const REG_ATENDIMENTO_V2& atendimento, CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  bool FiltraDatas(const REG_ATENDIMENTO_V2& atendimento) const;
  bool FiltraOrigemESituacao(const REG_ATENDIMENTO_V2& atendimento) const;
  bool FiltraListaExplicita(std::uint16_t iMA, std::uint32_t lPosicao) const;

  CRegFiltroAtendimento m_Filtro;
  CQVDadosDF_FiliaisAtivas m_dadosFiliaisAtivas;
  CQVDadosDF_Servico m_ServicoFiltro;
  std::vector<std::uint32_t> m_listaExecutores;
  CIEVinculo m_Vinculos;
  // cDescricaoServico with the code page's letters in one case ("" : none).
  std::string m_sDescricaoServico;
  // The first iQtdeMA months and iQtdePos positions, sorted for the look-up.
  std::vector<std::uint16_t> m_MesesExplicitos;
  std::vector<std::uint32_t> m_PosicoesExplicitas;
  // Master data read per pointer, at its first use in the search.
  std::unordered_map<std::uint32_t, std::uint32_t> m_MunicipioCliente;
  std::unordered_map<std::uint32_t, std::string> m_ClassificacaoServico;
};
