#include "df/qvlibex/CQVDadosDF_Erro.h"

#include <cstring>

#include "platform/QVCodePage.h"

void CQVDadosDF_Erro::CopiarPara(_REG_DF_ERROPS* preg) const {
  std::memset(preg, 0, sizeof *preg);
  preg->hr = hr;
  preg->nCodigoErro = nCodigoErro;
  preg->lCodigoMensagem = lCodigoMensagem;
  preg->iRegistro = iRegistro;
  preg->iItem = iItem;
  preg->lCodigoCampo = lCodigoCampo;
  preg->nModuloMensagem = nModuloMensagem;
  preg->nTipoErro = nTipoErro;
  preg->usNumeroServidor = usNumeroServidor;
  QVCopiaCampoTexto(preg->cMensagem, QVUtf8ToAnsi(sMensagem));
  QVCopiaCampoTexto(preg->szEmpresa, QVUtf8ToAnsi(sEmpresa));
}

void CQVDadosDF_Erro::CopiarDe(const _REG_DF_ERROPS& reg) {
  hr = reg.hr;
  nCodigoErro = reg.nCodigoErro;
  lCodigoMensagem = reg.lCodigoMensagem;
  iRegistro = reg.iRegistro;
  iItem = reg.iItem;
  lCodigoCampo = reg.lCodigoCampo;
  nModuloMensagem = reg.nModuloMensagem;
  nTipoErro = reg.nTipoErro;
  usNumeroServidor = reg.usNumeroServidor;
  sMensagem = QVAnsiToUtf8(QVLeCampoTexto(reg.cMensagem));
  sEmpresa = QVAnsiToUtf8(QVLeCampoTexto(reg.szEmpresa));
}
