// The suite's transaction log: one row per change that a user made through
// a module, with who, when, what kind of record, which operation and a text.
//
// Inicializa takes the session (company, user, session number) from a
// session base; Grava writes one row in its own transaction. The log only
// grows; `zelkorin suite show log` reads it.
#pragma once

#include <cstdint>
#include <string>

#include "df/qvlibex/QVDmc.h"
#include "platform/QVHResult.h"

class CQVBaseParaRotinas;

// Kinds of record of the GE module's log rows.
enum class E_GE_REGISTRO_LOG : std::uint16_t {
  eLogAtendimentoTecnico = 1,
  eLogProjeto = 2,
  eLogAcompanhamento = 3,
};

class CLogTransacoesHelper {
 public:
  // E_QVDF_SEM_SESSAO_SUITE for a base without a connected session.
  [[nodiscard]] HRESULT Inicializa(const CQVBaseParaRotinas* pBase);
  // cOperacao: 'I' inclusion, 'A' change, 'E' deletion. chave: the record
  // changed (empty: the module's settings). The row's time is now.
  [[nodiscard]] HRESULT Grava(const REG_QVDMC& chave, E_GE_REGISTRO_LOG eTipo, char cOperacao,
                              const std::string& sTexto = {});

 private:
  std::uint32_t m_lEmpresa = 0;
  std::uint32_t m_lUsuario = 0;
  std::uint32_t m_lSessao = 0;
  std::uint32_t m_uiModulo = 0;
};
