#include "tests/support/QVTesteArquivos.h"

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

#include "df/qvlibex/QVCrc64.h"
#include "suite/hostlink/QVSessaoSuite.h"

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

namespace {
std::uint64_t ChaveCodigo(const REG_TESTE& r, QVUInt) { return r.lCodigo; }
}  // namespace

CQVDataBase* CQVTestePasta::Banco() {
  auto& db = m_DBs.emplace_back(std::make_unique<CQVDataBase>(QV_GE));
  db->SetDiretorio(m_Dir);
  db->SetSomenteLeitura(m_bSomenteLeitura);
  if (FAILED(db->Inicializa(&QVTesteIdentidade()))) std::abort();
  return db.get();
}

std::unique_ptr<CQVFile<REG_TESTE>> CQVTestePasta::Registros(const std::string& nome) {
  return Inicializa(std::make_unique<CQVFile<REG_TESTE>>(
      nome, QV_GE, std::initializer_list<CQVFile<REG_TESTE>::Indice>{{&ChaveCodigo, false, false}}));
}

std::unique_ptr<CQVTextFile> CQVTestePasta::Textos(const std::string& nome) {
  return Inicializa(std::make_unique<CQVTextFile>(nome, QV_GE));
}

std::unique_ptr<CQVGroupFile<REG_TESTE>> CQVTestePasta::Meses() {
  return Inicializa(std::make_unique<CQVGroupFile<REG_TESTE>>(
      "GEATTPINT??????.DAT", QV_GE, std::initializer_list<CQVFile<REG_TESTE>::Indice>{{&ChaveCodigo, false, false}}));
}

std::vector<std::uint32_t> CQVTestePasta::Codigos(const std::string& nome) {
  auto f = Registros(nome);
  std::vector<std::uint32_t> codigos;
  for (QVUInt p = 1; p <= f->GetQtdRegistros(); ++p) codigos.push_back(f->GetRegistro(p)->lCodigo);
  return codigos;
}

std::vector<std::string> CQVTestePasta::TextosNoDisco(const std::string& nome) {
  auto f = Textos(nome);
  std::vector<std::string> textos;
  if (const auto* entradas = f->GetPtrRegistros(); entradas != nullptr)
    for (const auto& e : *entradas) textos.push_back(e.sTexto);
  return textos;
}

std::vector<std::string> CQVTestePasta::ListaDoControle() {
  return TextosNoDisco(QVDATABASE_NOME_ARQUIVO_CONTROLE_CRIACAO_ARQUIVOS);
}
