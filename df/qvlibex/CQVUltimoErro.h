// The last-error holder of an object: what the client reads with
// GetUltimoErro after a failed call. Setting an error replaces the previous
// one; reading does not clear it.
#pragma once

#include <cstdint>
#include <string>

#include "df/qvlibex/CQVDadosDF_Erro.h"

class CQVUltimoErro {
 public:
  virtual ~CQVUltimoErro() = default;

  // The status, the number of the server that failed and a message code;
  // the message text is the status's description.
  void SetErro(HRESULT hr, std::uint16_t usNumeroServidor, std::int32_t lCodigoMensagem = 0);
  // The same with a printf-style message text.
  void SetErro(HRESULT hr, std::uint16_t usNumeroServidor, std::int32_t lCodigoMensagem, const char* formato, ...)
      __attribute__((format(printf, 5, 6)));
  void SetErro(const CQVDadosDF_Erro& erro);
  void SetErro(const CQVDadosDF_Erro* pErro);

  const CQVDadosDF_Erro& GetErro() const { return m_Erro; }
  HRESULT GetUltimoHR() const { return m_Erro.hr; }
  std::uint16_t GetNumeroServidorUltimoHR() const { return m_Erro.usNumeroServidor; }
  void LimpaErro() { m_Erro.Limpa(); }

 protected:
  // The company written into every error; the session sets it.
  void DefineEmpresaErro(std::string empresa) { m_sEmpresaErro = std::move(empresa); }

 private:
  CQVDadosDF_Erro m_Erro;
  std::string m_sEmpresaErro;
};
