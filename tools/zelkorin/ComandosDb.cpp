#include "tools/zelkorin/ComandosDb.h"

#include <strings.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <map>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "core/qvdatabase/CQVDataBase.h"
#include "core/qvdatabase/CQVDataBaseUtil.h"
#include "core/qvdatabase/QVFileNameFormat.h"
#include "core/qvdatabase/QVFileRegistros.h"
#include "core/qvdatabase/QVFormatoCabecalho.h"
#include "core/qvdatabase/QVTextFile.h"
#include "core/qvdatabase/QVVerificacao.h"
#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVCrc64.h"
#include "df/qvlibex/QVDatas.h"
#include "df/qvlibex/QVStatus.h"
#include "ge/zelkorin/ZelkorinArquivos.h"
#include "platform/QVCodePage.h"
#include "platform/QVOsFile.h"

namespace {

std::string Hex64(std::uint64_t v) {
  char buf[24];
  std::snprintf(buf, sizeof buf, "0x%016llX", static_cast<unsigned long long>(v));
  return buf;
}

std::string Status(HRESULT hr) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "0x%08X", static_cast<unsigned>(hr));
  const std::string nome = QVNomeSimbolico(hr);
  return (nome.empty() ? std::string() : nome + " ") + buf;
}

template <std::size_t N>
std::string Texto(const char (&campo)[N]) {
  std::size_t n = 0;
  while (n < N && campo[n] != '\0') ++n;
  return QVAnsiToUtf8(std::string(campo, n));
}

std::string Diretorio(const std::string& c) {
  const std::size_t b = c.find_last_of('/');
  return b == std::string::npos ? "." : c.substr(0, b);
}

std::string Nome(const std::string& c) { return c.substr(c.find_last_of('/') + 1); }

// Reads the first bytes of a file without any lock or write.
bool LeInicio(const std::string& sArquivo, std::string* pBytes, std::uint64_t* pTamanho, std::uint32_t* pErro) {
  auto f = QVCreateRealOsFile();
  if (!f->Open(sArquivo, QVFILE_MODE_READ | QVFILE_SHARE_DENY_NONE | QVFILE_MODE_NO_TRUNCATE) ||
      !f->GetLength(pTamanho)) {
    *pErro = f->LastError();
    return false;
  }
  pBytes->assign(static_cast<std::size_t>(std::min<std::uint64_t>(*pTamanho, kQVTamanhoBlocoCabecalho)), '\0');
  std::size_t lido = 0;
  while (lido < pBytes->size()) {
    std::size_t n = 0;
    if (!f->Read(pBytes->data() + lido, pBytes->size() - lido, &n) || n == 0) {
      *pErro = f->LastError();
      return false;
    }
    lido += n;
  }
  return true;
}

bool IguaisSemCaixa(const std::string& a, const std::string& b) {
  return a.size() == b.size() && strncasecmp(a.c_str(), b.c_str(), a.size()) == 0;
}

bool EhArquivoDeMarca(const std::string& sNome) { return strncasecmp(sNome.c_str(), "XXMARCA", 7) == 0; }

bool SoDigitos(const std::string& s) {
  return !s.empty() && std::all_of(s.begin(), s.end(), [](unsigned char c) { return std::isdigit(c) != 0; });
}

// The checks of a company's directory as a whole: month files, the
// file-creation control, left-over copies and marks. Returns the failures.
int VerificaDiretorio(const std::string& sDir, const std::vector<std::string>& nomes, std::ostream& out) {
  int falhas = 0;
  // Month files, grouped by root: each name's period must be readable.
  std::map<std::string, std::vector<std::uint16_t>> meses;
  for (const std::string& n : nomes) {
    const std::size_t ponto = n.find_last_of('.');
    if (ponto == std::string::npos || strcasecmp(n.c_str() + ponto + 1, "dat") != 0) continue;
    const std::string sRaiz = n.substr(0, ponto);
    for (const char* raiz : QVRaizesPorMesGE()) {
      const std::size_t t = std::strlen(raiz);
      if (sRaiz.size() <= t || strncasecmp(sRaiz.c_str(), raiz, t) != 0 || !SoDigitos(sRaiz.substr(t))) continue;
      const std::uint16_t iMA = CQVFileNameFormatMa<10>::Periodo(sRaiz, raiz);
      if (sRaiz.size() == t + 6 && iMA != 0) {
        meses[raiz].push_back(iMA);
      } else if (sRaiz.size() == t + 4) {
        out << sDir << "/" << n << ": AVISO nome no formato antigo (mês e ano com dois dígitos); a conversão o renomeia\n";
      } else {
        ++falhas;
        out << sDir << "/" << n << ": " << Status(E_QVCR_NOME_ARQUIVO_GROUP_INVALIDO) << " - período ilegível no nome\n";
      }
    }
  }
  for (auto& [raiz, lista] : meses) {
    std::sort(lista.begin(), lista.end());
    out << sDir << "/" << raiz << "AAAAMM.DAT: " << lista.size() << (lista.size() == 1 ? " mês" : " meses") << ", de "
        << QVDiaTexto(QVPrimeiroDiaDoMes(lista.front())).substr(0, 7) << " a "
        << QVDiaTexto(QVPrimeiroDiaDoMes(lista.back())).substr(0, 7) << "\n";
  }

  // The control file: every listed file must be on disk.
  if (std::any_of(nomes.begin(), nomes.end(),
                  [](const std::string& n) { return IguaisSemCaixa(n, QVDATABASE_NOME_ARQUIVO_CONTROLE_CRIACAO_ARQUIVOS); })) {
    CQVDataBase db;
    db.SetSomenteLeitura(true);
    db.SetDiretorio(sDir);
    const CQVProfilerEmpresa identidade;
    CQVTextFile controle(QVDATABASE_NOME_ARQUIVO_CONTROLE_CRIACAO_ARQUIVOS, 0);
    if (SUCCEEDED(db.Inicializa(&identidade)) && SUCCEEDED(controle.Inicializa(&db))) {
      for (const CQVTextFile::Entrada& e : *controle.GetPtrRegistros()) {
        if (QVFileExists(sDir + "/" + e.sTexto)) continue;
        ++falhas;
        out << sDir << "/" << QVAnsiToUtf8(e.sTexto) << ": " << Status(E_QVCR_INCONSISTENCIA_CONTROLE_CRIACAO_ARQUIVOS)
            << " - listado em " << QVDATABASE_NOME_ARQUIVO_CONTROLE_CRIACAO_ARQUIVOS << " e ausente do disco\n";
      }
    }
  }

  for (const std::string& n : nomes) {
    // A copy left by an interrupted rewrite or header creation.
    if (IguaisSemCaixa(CQVDataBaseUtil::Extensao(n), "tra")) {
      ++falhas;
      out << sDir << "/" << n << ": " << Status(E_QVCR_ARQUIVO_TRA_ENCONTRADO) << " - "
          << QVDescricaoHResult(E_QVCR_ARQUIVO_TRA_ENCONTRADO) << "\n";
    }
    // Marks: held by a running process, or left by one that ended. A
    // read-only open that denies nothing tells them apart without touching
    // the file: only a holder refuses it.
    if (EhArquivoDeMarca(n)) {
      auto f = QVCreateRealOsFile();
      const bool bLivre = f->Open(sDir + "/" + n, QVFILE_MODE_READ | QVFILE_SHARE_DENY_NONE | QVFILE_MODE_NO_TRUNCATE);
      out << sDir << "/" << n
          << (bLivre ? ": AVISO marca abandonada por um processo que terminou; não bloqueia ninguém\n"
                     : ": marcada por um processo em execução\n");
    }
  }
  return falhas;
}

}  // namespace

int QVComandoDbHeader(const std::string& sArquivo, std::ostream& out, std::ostream& err) {
  std::string b;
  std::uint64_t tamanho = 0;
  std::uint32_t erro = 0;
  if (!LeInicio(sArquivo, &b, &tamanho, &erro)) {
    err << sArquivo << ": " << Status(HRESULT_FROM_WIN32(erro)) << "\n";
    return 1;
  }
  nlohmann::json j;
  j["arquivo"] = sArquivo;
  j["tamanho"] = tamanho;
  QVPreambuloArquivo p{};
  bool bPreambulo = b.size() >= kQVTamanhoPreambulo;
  if (bPreambulo) std::memcpy(&p, b.data(), sizeof p);
  const bool bVerif1 = bPreambulo && p.uiVerificacao1 == QVCrc64(b.data(), 2);
  const bool bVerif2 = bPreambulo && p.uiVerificacao2 == QVCrc64(b.data() + 8, 8);
  const bool bPossui = bPreambulo && p.usVersaoCabecalho != 0 && bVerif1 && bVerif2;
  j["possuiCabecalho"] = bPossui;
  if (bPreambulo)
    j["preambulo"] = {{"versaoCabecalho", p.usVersaoCabecalho},
                      {"verificacao1", Hex64(p.uiVerificacao1)},
                      {"verificacao1Confere", bVerif1},
                      {"verificacao2", Hex64(p.uiVerificacao2)},
                      {"verificacao2Confere", bVerif2}};
  if (bPossui && b.size() >= kQVTamanhoBlocoCabecalho) {
    QVCabecalhoArquivo c;
    std::memcpy(&c, b.data() + kQVTamanhoPreambulo, sizeof c);
    j["cabecalho"] = {
        {"ultimaAtualizacao", QVDataHoraTexto(c.iUltimaAtualizacao)},
        {"criacao", QVDataHoraTexto(c.iCriacao)},
        {"criacaoCopia", QVDataHoraTexto(c.iCriacaoCopia)},
        {"alteracaoEmpresa", QVDataHoraTexto(c.iAlteracaoEmpresa)},
        {"alteracaoComputador", QVDataHoraTexto(c.iAlteracaoComputador)},
        {"tamanhoCabecalho", c.uiTamanhoCabecalho},
        {"tamanhoDados", c.uiTamanhoDados},
        {"tamanhoDadosConfere", tamanho >= kQVTamanhoBlocoCabecalho && c.uiTamanhoDados == tamanho - kQVTamanhoBlocoCabecalho},
        {"contadorAtualizacoes", c.uiContadorAtualizacoes},
        {"contadorVoltas", c.usContadorVoltas},
        {"numeroSessao", c.uiNumeroSessao},
        {"usuario", c.ulUsuario},
        {"versaoArquivo", c.usVersaoArquivo},
        {"versaoSistemaCriacao", c.usVersaoSistemaCriacao},
        {"versaoSistemaAtualizacao", c.usVersaoSistemaAtualizacao},
        {"nomeArquivo", Texto(c.szNomeArquivo)},
        {"empresa", Texto(c.szEmpresa)},
        {"empresaAnterior", Texto(c.szEmpresaAnterior)},
        {"computador", Texto(c.szComputador)},
        {"computadorAnterior", Texto(c.szComputadorAnterior)},
        {"verificacao", Hex64(c.uiVerificacaoCabecalho)},
        {"verificacaoConfere", c.uiVerificacaoCabecalho == QVCrc64(&c, kQVBytesCrcCabecalho)}};
  }
  out << j.dump(2) << "\n";
  return 0;
}

int QVComandoDbVerify(const std::vector<std::string>& caminhos, std::optional<std::size_t> tamRegistro,
                      std::ostream& out, std::ostream& err) {
  std::vector<std::string> arquivos;
  std::vector<std::pair<std::string, std::vector<std::string>>> diretorios;
  for (const std::string& c : caminhos) {
    std::vector<std::string> nomes;
    if (SUCCEEDED(QVListDirectory(c, &nomes))) {
      for (const std::string& n : nomes) {
        const std::size_t ponto = n.find_last_of('.');
        if (ponto != std::string::npos && strcasecmp(n.c_str() + ponto + 1, "dat") == 0 && !EhArquivoDeMarca(n))
          arquivos.push_back(c + "/" + n);
      }
      diretorios.emplace_back(c, std::move(nomes));
    } else {
      arquivos.push_back(c);
    }
  }
  if (arquivos.empty() && diretorios.empty()) {
    err << "nenhum arquivo .dat encontrado\n";
    return 1;
  }
  int falhas = 0;
  for (const auto& [dir, nomes] : diretorios) falhas += VerificaDiretorio(dir, nomes, out);
  for (const std::string& a : arquivos) {
    EQVTipoConteudo tipo = EQVTipoConteudo::Desconhecido;
    std::size_t tam = 0;
    if (tamRegistro) {
      tipo = EQVTipoConteudo::Registros;
      tam = *tamRegistro;
    } else if (const QVArquivoGE* conhecido = QVProcuraArquivoGE(Nome(a))) {
      tipo = conhecido->tipo;
      tam = conhecido->tamRegistro;
    }
    const QVResultadoVerificacao r = QVVerificaArquivo(a, tipo, tam);
    out << a << ": ";
    if (FAILED(r.hr)) {
      ++falhas;
      out << Status(r.hr) << " - " << QVDescricaoHResult(r.hr) << "\n";
      continue;
    }
    out << "OK (" << (r.bPossuiCabecalho ? "com cabeçalho" : "sem cabeçalho") << "; " << r.uiTamanhoDados
        << " bytes de dados";
    if (tipo == EQVTipoConteudo::Registros || tipo == EQVTipoConteudo::RegistroUnico)
      out << "; " << r.uiQuantidade << (r.uiQuantidade == 1 ? " registro" : " registros") << " de " << tam << " bytes";
    else if (tipo == EQVTipoConteudo::Texto)
      out << "; " << r.uiQuantidade << (r.uiQuantidade == 1 ? " texto" : " textos");
    out << ")\n";
  }
  return falhas == 0 ? 0 : 1;
}

int QVComandoDbDump(const std::string& sArquivo, std::optional<std::size_t> tamRegistro, bool bTexto,
                    std::ostream& out, std::ostream& err) {
  if (bTexto == tamRegistro.has_value() || (tamRegistro && *tamRegistro == 0)) {
    err << "informe --record-size N (N > 0) ou --text\n";
    return 2;
  }
  // A read-only database: every open is read-only and nothing is written.
  CQVDataBase db;
  db.SetSomenteLeitura(true);
  db.SetDiretorio(Diretorio(sArquivo));
  const CQVProfilerEmpresa identidade;
  if (const HRESULT hr = db.Inicializa(&identidade); FAILED(hr)) {
    err << sArquivo << ": " << Status(hr) << "\n";
    return 1;
  }
  std::unique_ptr<CQVFileBase> arquivo;
  if (bTexto)
    arquivo = std::make_unique<CQVTextFile>(Nome(sArquivo), 0);
  else
    arquivo = std::make_unique<CQVFileRegistros>(Nome(sArquivo), 0, *tamRegistro, "REGISTRO");
  HRESULT hr = arquivo->DesabilitaControleCriacaoArquivos();
  if (SUCCEEDED(hr)) hr = arquivo->Inicializa(&db);
  if (SUCCEEDED(hr) && !arquivo->ExisteArquivo()) hr = HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
  if (FAILED(hr)) {
    err << sArquivo << ": " << Status(hr) << " - " << QVDescricaoHResult(hr) << "\n";
    return 1;
  }
  const QVUInt qtd = arquivo->GetQtdRegistros();
  if (bTexto) {
    auto* textos = static_cast<CQVTextFile*>(arquivo.get());
    for (QVUInt p = 1; p <= qtd; ++p) {
      std::string t;
      if (SUCCEEDED(textos->Le(p, &t))) out << p << "\t" << t.size() << "\t" << QVAnsiToUtf8(t) << "\n";
    }
    return 0;
  }
  auto* registros = static_cast<CQVFileRegistros*>(arquivo.get());
  std::vector<unsigned char> r(*tamRegistro);
  char linha[160];
  for (QVUInt p = 1; p <= qtd; ++p) {
    if (FAILED(registros->LeRegistro(p, r.data()))) continue;
    out << "posição " << p << "\n";
    for (std::size_t o = 0; o < r.size(); o += 16) {
      int n = std::snprintf(linha, sizeof linha, "  %04zx ", o);
      std::string ascii;
      for (std::size_t i = o; i < o + 16 && i < r.size(); ++i) {
        n += std::snprintf(linha + n, sizeof linha - static_cast<std::size_t>(n), " %02x", r[i]);
        ascii.push_back(r[i] >= 0x20 && r[i] < 0x7F ? static_cast<char>(r[i]) : '.');
      }
      out << linha << std::string(static_cast<std::size_t>(std::max(0, 56 - n)), ' ') << "  " << ascii << "\n";
    }
  }
  return 0;
}

void QVRegistraComandosDb(CLI::App& app, int* pCodigoSaida) {
  CLI::App* db = app.add_subcommand("db", "Inspeção dos arquivos de dados (nada é alterado)");
  db->require_subcommand(1);

  auto* header = db->add_subcommand("header", "Preâmbulo e cabeçalho de um arquivo, em JSON");
  auto arquivoHeader = std::make_shared<std::string>();
  header->add_option("FILE", *arquivoHeader, "Arquivo de dados")->required();
  header->callback([=] { *pCodigoSaida = QVComandoDbHeader(*arquivoHeader, std::cout, std::cerr); });

  auto* verify = db->add_subcommand("verify", "Valida arquivos (ou os .dat de um diretório)");
  auto caminhos = std::make_shared<std::vector<std::string>>();
  auto tamVerify = std::make_shared<std::size_t>(0);
  verify->add_option("PATH", *caminhos, "Arquivos ou diretórios")->required();
  auto* optVerify = verify->add_option("--record-size", *tamVerify, "Tamanho do registro de todos os arquivos");
  verify->callback([=] {
    *pCodigoSaida = QVComandoDbVerify(*caminhos, optVerify->count() > 0 ? std::optional(*tamVerify) : std::nullopt,
                                      std::cout, std::cerr);
  });

  auto* dump = db->add_subcommand("dump", "Registros em hexadecimal, ou textos, com suas posições");
  auto arquivoDump = std::make_shared<std::string>();
  auto tamDump = std::make_shared<std::size_t>(0);
  auto texto = std::make_shared<bool>(false);
  dump->add_option("FILE", *arquivoDump, "Arquivo de dados")->required();
  auto* optDump = dump->add_option("--record-size", *tamDump, "Tamanho do registro");
  dump->add_flag("--text", *texto, "Arquivo de textos");
  dump->callback([=] {
    *pCodigoSaida = QVComandoDbDump(*arquivoDump, optDump->count() > 0 ? std::optional(*tamDump) : std::nullopt,
                                    *texto, std::cout, std::cerr);
  });
}
