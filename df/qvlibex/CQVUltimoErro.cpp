#include "df/qvlibex/CQVUltimoErro.h"

#include <cstdarg>
#include <cstdio>

#include "df/qvlibex/QVStatus.h"

void CQVUltimoErro::SetErro(HRESULT hr, std::uint16_t usNumeroServidor, std::int32_t lCodigoMensagem) {
  m_Erro.Limpa();
  m_Erro.hr = hr;
  m_Erro.usNumeroServidor = usNumeroServidor;
  m_Erro.lCodigoMensagem = lCodigoMensagem;
  m_Erro.sMensagem = QVDescricaoHResult(hr);
  m_Erro.sEmpresa = m_sEmpresaErro;
}

void CQVUltimoErro::SetErro(HRESULT hr, std::uint16_t usNumeroServidor, std::int32_t lCodigoMensagem,
                            const char* formato, ...) {
  SetErro(hr, usNumeroServidor, lCodigoMensagem);
  char buf[1024];
  va_list args;
  va_start(args, formato);
  std::vsnprintf(buf, sizeof buf, formato, args);
  va_end(args);
  m_Erro.sMensagem = buf;
}

void CQVUltimoErro::SetErro(const CQVDadosDF_Erro& erro) {
  m_Erro = erro;
  if (m_Erro.sEmpresa.empty()) m_Erro.sEmpresa = m_sEmpresaErro;
}

void CQVUltimoErro::SetErro(const CQVDadosDF_Erro* pErro) {
  if (pErro != nullptr)
    SetErro(*pErro);
  else
    m_Erro.Limpa();
}
