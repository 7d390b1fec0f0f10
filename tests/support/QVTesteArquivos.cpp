#include "tests/support/QVTesteArquivos.h"

#include <cstring>
#include <fstream>
#include <sstream>

#include "df/qvlibex/QVCrc64.h"

REG_TESTE QVTesteRegistro(std::uint32_t codigo, std::uint32_t grupo, const char* nome) {
  REG_TESTE r{};
  r.lCodigo = codigo;
  r.lGrupo = grupo;
  std::strncpy(r.szNome, nome, sizeof r.szNome - 1);
  return r;
}

const CQVProfilerEmpresa& QVTesteIdentidade() {
  static const CQVProfilerEmpresa identidade("EMPRESA_TESTE", 7, 1234);
  return identidade;
}

std::string QVTesteBytes(const std::string& caminho) {
  std::ifstream in(caminho, std::ios::binary);
  std::stringstream ss;
  ss << in.rdbuf();
  return ss.str();
}

void QVTesteGravaBytes(const std::string& caminho, const std::string& bytes) {
  std::ofstream(caminho, std::ios::binary | std::ios::trunc) << bytes;
}

QVCabecalhoArquivo QVTesteLeCabecalho(const std::string& caminho) {
  const std::string b = QVTesteBytes(caminho);
  QVCabecalhoArquivo c{};
  if (b.size() >= kQVTamanhoBlocoCabecalho) std::memcpy(&c, b.data() + kQVTamanhoPreambulo, sizeof c);
  return c;
}

void QVTesteAlteraCabecalho(const std::string& caminho, const std::function<void(QVCabecalhoArquivo&)>& altera,
                            bool bCorrigeCrc) {
  std::string b = QVTesteBytes(caminho);
  QVCabecalhoArquivo c;
  std::memcpy(&c, b.data() + kQVTamanhoPreambulo, sizeof c);
  altera(c);
  if (bCorrigeCrc) c.uiVerificacaoCabecalho = QVCrc64(&c, kQVBytesCrcCabecalho);
  std::memcpy(b.data() + kQVTamanhoPreambulo, &c, sizeof c);
  QVTesteGravaBytes(caminho, b);
}
