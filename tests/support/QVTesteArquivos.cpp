#include "tests/support/QVTesteArquivos.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>

#include "df/qvlibex/QVCrc64.h"

REG_TESTE QVTesteRegistro(std::uint32_t codigo, std::uint32_t grupo, const char* nome) {
  REG_TESTE r{};
  r.lCodigo = codigo;
  r.lGrupo = grupo;
  std::strncpy(r.szNome, nome, sizeof r.szNome - 1);
  return r;
}

std::string QVTesteBytesDe(const std::vector<REG_TESTE>& registros) {
  return {reinterpret_cast<const char*>(registros.data()), registros.size() * sizeof(REG_TESTE)};
}

HRESULT QVTesteAcrescenta(CQVFile<REG_TESTE>& f, std::initializer_list<std::uint32_t> codigos) {
  std::vector<REG_TESTE> registros;
  for (std::uint32_t c : codigos) registros.push_back(QVTesteRegistro(c));
  QVUInt pos = 0;
  return f.GravaColecao(pos, registros);
}

HRESULT QVTesteAcrescenta(CQVTextFile& f, const std::vector<std::string>& textos) {
  QVUInt pos = 0;
  return f.GravaColecao(pos, textos);
}

const CQVProfilerEmpresa& QVTesteIdentidade() {
  static const CQVProfilerEmpresa identidade("EMPRESA_TESTE", 7, 1234);
  return identidade;
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

std::size_t QVTesteLinhasCom(std::initializer_list<std::string> trechos) {
  std::size_t n = 0;
  for (const std::string& l : QVTesteLinhasErro())
    n += std::all_of(trechos.begin(), trechos.end(),
                     [&](const std::string& t) { return l.find(t) != std::string::npos; });
  return n;
}

std::uint64_t QVTesteChaveCodigo(const REG_TESTE& r, QVUInt) { return r.lCodigo; }

std::string QVTesteHrNoLog(HRESULT hr) {
  char s[32];
  std::snprintf(s, sizeof s, "hr = %#X", static_cast<unsigned>(hr));
  return s;
}

CQVDataBase* CQVTestePasta::Banco() {
  auto& db = m_DBs.emplace_back(std::make_unique<CQVDataBase>(QV_GE));
  db->SetDiretorio(m_Dir);
  db->SetSomenteLeitura(m_bSomenteLeitura);
  db->SetRetemArquivos(!m_bLiberaArquivos);
  if (m_bLiberaArquivos) db->NovaEpocaLeitura();
  if (FAILED(db->Inicializa(&QVTesteIdentidade()))) std::abort();
  return db.get();
}

std::unique_ptr<CQVFile<REG_TESTE>> CQVTestePasta::Registros(const std::string& nome) {
  return Inicializa(std::make_unique<CQVFile<REG_TESTE>>(
      nome, QV_GE, std::initializer_list<CQVFile<REG_TESTE>::Indice>{{&QVTesteChaveCodigo, false, false}}));
}

std::unique_ptr<CQVTextFile> CQVTestePasta::Textos(const std::string& nome) {
  return Inicializa(std::make_unique<CQVTextFile>(nome, QV_GE));
}

std::unique_ptr<CQVGroupFile<REG_TESTE>> CQVTestePasta::Meses() {
  return Inicializa(std::make_unique<CQVGroupFile<REG_TESTE>>(
      "GEATTPINT??????.DAT", QV_GE,
      std::initializer_list<CQVFile<REG_TESTE>::Indice>{{&QVTesteChaveCodigo, false, false}}));
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
