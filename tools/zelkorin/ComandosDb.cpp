#include "tools/zelkorin/ComandosDb.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>

#include "core/qvdatabase/CQVDataBase.h"
#include "core/qvdatabase/CQVDataBaseControleCriacaoArquivos.h"
#include "core/qvdatabase/CQVDataBaseUtil.h"
#include "core/qvdatabase/QVFileNameFormat.h"
#include "core/qvdatabase/QVFileRegistros.h"
#include "core/qvdatabase/QVFormatoCabecalho.h"
#include "core/qvdatabase/QVTextFile.h"
#include "core/qvdatabase/QVVerificacao.h"
#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVCrc64.h"
#include "df/qvlibex/QVDatas.h"
#include "df/qvlibex/QVLog.h"
#include "df/qvlibex/QVProfilerLog.h"
#include "df/qvlibex/QVRegistrosDF.h"
#include "df/qvlibex/QVStatus.h"
#include "ge/zelkorin/ZelkorinArquivos.h"
#include "platform/QVCodePage.h"
#include "platform/QVOsFile.h"
#include "suite/hostlink/QVSessaoSuite.h"

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
  return QVAnsiToUtf8(QVLeCampoTexto(campo));
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

bool EhArquivoDeMarca(const std::string& sNome) { return QVNomesIguais(sNome.substr(0, 7), "XXMARCA"); }
bool EhDat(const std::string& sNome) { return QVNomesIguais(CQVDataBaseUtil::Extensao(sNome), "dat"); }

// One thing a directory check found, on a line of its own.
enum class ENivel { Falha, Aviso, Informacao };
struct Achado {
  std::string sCaminho;
  ENivel eNivel;
  HRESULT hr;  // failures only
  std::string sTexto;
};

void Falha(std::vector<Achado>* p, std::string sCaminho, HRESULT hr, std::string sTexto) {
  p->push_back({std::move(sCaminho), ENivel::Falha, hr, std::move(sTexto)});
}
void Aviso(std::vector<Achado>* p, std::string sCaminho, std::string sTexto) {
  p->push_back({std::move(sCaminho), ENivel::Aviso, S_OK, std::move(sTexto)});
}
void Informa(std::vector<Achado>* p, std::string sCaminho, std::string sTexto) {
  p->push_back({std::move(sCaminho), ENivel::Informacao, S_OK, std::move(sTexto)});
}

// The names the file-creation control of a directory lists, read through
// the control itself (read-only: nothing is written).
HRESULT LeControle(const std::string& sDir, std::vector<std::string>* pNomes) {
  CQVTextFile arquivoControle(QVDATABASE_NOME_ARQUIVO_CONTROLE_CRIACAO_ARQUIVOS, 0);
  arquivoControle.SetDiretorio(sDir);
  CQVDataBaseControleCriacaoArquivos controle;
  QV_CHECK(controle.Inicializa(&arquivoControle));
  QV_CHECK(controle.LeLista(pNomes));
  return S_OK;
}

std::string Mes(std::uint16_t iMA) { return QVDiaTexto(QVPrimeiroDiaDoMes(iMA)).substr(0, 7); }

// Month files: every root the module opens as a group judges the names by
// the groups' own rule, so a name reported here is one the server refuses,
// and a name the server takes is never reported.
void VerificaMeses(const std::string& sDir, const std::vector<std::string>& nomes, std::vector<Achado>* pAchados) {
  std::map<std::string, std::vector<std::uint16_t>> meses;
  for (const std::string& n : nomes) {
    for (const QVRaizMensalGE& raiz : QVRaizesMensaisGE()) {
      const std::string sPadrao = QVPadraoGrupoMensal(raiz.raiz);
      if (QVCorrespondeAoPadraoGrupo(sPadrao, n)) {
        if (const std::uint16_t iMA = QVPeriodoMembroGrupo(sPadrao, n); iMA != 0)
          meses[raiz.raiz].push_back(iMA);
        else
          Falha(pAchados, sDir + "/" + n, E_QVCR_NOME_ARQUIVO_GROUP_INVALIDO,
                "período ilegível no nome; o grupo " + sPadrao + " recusa o diretório");
      }
      std::uint16_t iMA = 0;
      if (!raiz.bRenomeadaPelaConversao || !QVNomeMensalAntigo(n, raiz.raiz, &iMA)) continue;
      const std::string sNovo = CQVFileNameFormatMa<10>::Nome(raiz.raiz, iMA);
      // The conversion leaves an old file alone when the new name is taken.
      const bool bNovoExiste =
          std::any_of(nomes.begin(), nomes.end(), [&](const std::string& m) { return QVNomesIguais(m, sNovo); });
      Aviso(pAchados, sDir + "/" + n,
            iMA == 0      ? "nome no formato antigo com período ilegível; a conversão não o renomeia"
            : bNovoExiste ? "nome no formato antigo; " + sNovo + " já existe e a conversão o deixa como está"
                          : "nome no formato antigo (mês e ano com dois dígitos); a conversão o renomeia para " + sNovo);
    }
  }
  for (auto& [raiz, lista] : meses) {
    std::sort(lista.begin(), lista.end());
    Informa(pAchados, sDir + "/" + raiz + "AAAAMM.DAT",
            std::to_string(lista.size()) + (lista.size() == 1 ? " mês" : " meses") + ", de " + Mes(lista.front()) +
                " a " + Mes(lista.back()));
  }
}

// A ".tra" copy left by a process that died before putting it in its
// file's place. The file itself is whole then (the copy takes its place by
// a rename). What the copy still blocks depends on whose it is: a
// compaction replaces its own left-over copy, but the control's copy stops
// every removal from the control, and a copy beside a file without header
// stops that header from being made.
void VerificaCopiaTra(const std::string& sDir, const std::vector<std::string>& nomes, const std::string& sCopia,
                      std::vector<Achado>* pAchados) {
  const std::string sBase = sCopia.substr(0, sCopia.size() - 3);
  const auto itOriginal = std::find_if(nomes.begin(), nomes.end(), [&](const std::string& m) {
    return m.size() == sCopia.size() && QVNomesIguais(m.substr(0, sBase.size()), sBase) &&
           QVNomesIguais(CQVDataBaseUtil::Extensao(m), "dat");
  });
  const std::string sCaminho = sDir + "/" + sCopia;
  if (itOriginal == nomes.end()) {
    Falha(pAchados, sCaminho, E_QVCR_ARQUIVO_TRA_ENCONTRADO,
          "cópia sem o arquivo de origem: pode ser a única cópia dos dados; examine-a antes de apagar");
  } else if (QVNomesIguais(*itOriginal, QVDATABASE_NOME_ARQUIVO_CONTROLE_CRIACAO_ARQUIVOS)) {
    Falha(pAchados, sCaminho, E_QVCR_ARQUIVO_TRA_ENCONTRADO,
          "impede retirar nomes do controle; o controle está inteiro: apague a cópia com o servidor parado");
  } else if (!QVVerificaArquivo(sDir + "/" + *itOriginal, EQVTipoConteudo::Desconhecido).bPossuiCabecalho) {
    Falha(pAchados, sCaminho, E_QVCR_ARQUIVO_TRA_ENCONTRADO,
          "impede criar o cabeçalho de " + *itOriginal + ", que está inteiro: apague a cópia com o servidor parado");
  } else {
    Aviso(pAchados, sCaminho,
          "cópia deixada por uma compactação interrompida; " + *itOriginal +
              " está inteiro e a próxima compactação substitui a cópia");
  }
}

// The checks of a company's directory as a whole: month files, the
// file-creation control, left-over copies and marks.
void VerificaDiretorio(const std::string& sDir, const std::vector<std::string>& nomes, std::vector<Achado>* pAchados) {
  VerificaMeses(sDir, nomes, pAchados);

  std::vector<std::string> listados;
  if (const HRESULT hr = LeControle(sDir, &listados); FAILED(hr))
    Falha(pAchados, sDir + "/" + QVDATABASE_NOME_ARQUIVO_CONTROLE_CRIACAO_ARQUIVOS, hr, "controle ilegível");
  for (const std::string& n : listados)
    if (!QVFileExists(sDir + "/" + n))
      Falha(pAchados, sDir + "/" + QVAnsiToUtf8(n), E_QVCR_INCONSISTENCIA_CONTROLE_CRIACAO_ARQUIVOS,
            std::string("listado em ") + QVDATABASE_NOME_ARQUIVO_CONTROLE_CRIACAO_ARQUIVOS +
                " e ausente do disco (zelkorin db control)");

  for (const std::string& n : nomes) {
    if (QVNomesIguais(CQVDataBaseUtil::Extensao(n), "tra")) VerificaCopiaTra(sDir, nomes, n, pAchados);
    // Marks: held by a running process, or left by one that ended. A
    // read-only open that denies nothing tells them apart without touching
    // the file: only a holder refuses it.
    if (EhArquivoDeMarca(n)) {
      auto f = QVCreateRealOsFile();
      if (f->Open(sDir + "/" + n, QVFILE_MODE_READ | QVFILE_SHARE_DENY_NONE | QVFILE_MODE_NO_TRUNCATE))
        Aviso(pAchados, sDir + "/" + n, "marca abandonada por um processo que terminou; não bloqueia ninguém");
      else
        Informa(pAchados, sDir + "/" + n, "marcada por um processo em execução");
    }
  }
}

void EscreveAchado(const Achado& a, std::ostream& out) {
  out << a.sCaminho << ": ";
  if (a.eNivel == ENivel::Falha) out << Status(a.hr) << " - ";
  if (a.eNivel == ENivel::Aviso) out << "AVISO ";
  out << a.sTexto << "\n";
}

nlohmann::json AchadoJson(const Achado& a) {
  static const char* const kNiveis[] = {"falha", "aviso", "informacao"};
  nlohmann::json j = {{"caminho", a.sCaminho}, {"nivel", kNiveis[static_cast<int>(a.eNivel)]}, {"texto", a.sTexto}};
  if (a.eNivel == ENivel::Falha) j["status"] = Status(a.hr);
  return j;
}

struct ArquivoVerificado {
  std::string sCaminho;
  EQVTipoConteudo eTipo;
  std::size_t tamRegistro;
  QVResultadoVerificacao r;
};

std::string Resumo(const ArquivoVerificado& a) {
  if (FAILED(a.r.hr)) return Status(a.r.hr) + " - " + QVDescricaoHResult(a.r.hr);
  std::string s = std::string("OK (") + (a.r.bPossuiCabecalho ? "com cabeçalho" : "sem cabeçalho") + "; " +
                  std::to_string(a.r.uiTamanhoDados) + " bytes de dados";
  const std::uint64_t q = a.r.uiQuantidade;
  if (a.eTipo == EQVTipoConteudo::Registros || a.eTipo == EQVTipoConteudo::RegistroUnico)
    s += "; " + std::to_string(q) + (q == 1 ? " registro" : " registros") + " de " + std::to_string(a.tamRegistro) +
         " bytes";
  else if (a.eTipo == EQVTipoConteudo::Texto)
    s += "; " + std::to_string(q) + (q == 1 ? " texto" : " textos");
  if (a.r.uiBytesEscritaInacabada != 0)
    s += "; aviso: " + std::to_string(a.r.uiBytesEscritaInacabada) +
         " bytes de uma gravação inacabada após o fim indicado no cabeçalho, descartados na próxima gravação";
  return s + ")";
}

nlohmann::json ArquivoJson(const ArquivoVerificado& a) {
  nlohmann::json j = {{"arquivo", a.sCaminho}, {"status", SUCCEEDED(a.r.hr) ? std::string("OK") : Status(a.r.hr)}};
  if (FAILED(a.r.hr)) {
    j["descricao"] = QVDescricaoHResult(a.r.hr);
    return j;
  }
  j["possuiCabecalho"] = a.r.bPossuiCabecalho;
  j["tamanhoDados"] = a.r.uiTamanhoDados;
  if (a.eTipo != EQVTipoConteudo::Desconhecido) j["quantidade"] = a.r.uiQuantidade;
  if (a.r.uiBytesEscritaInacabada != 0) j["bytesEscritaInacabada"] = a.r.uiBytesEscritaInacabada;
  if (a.eTipo == EQVTipoConteudo::Registros || a.eTipo == EQVTipoConteudo::RegistroUnico)
    j["tamanhoRegistro"] = a.tamRegistro;
  return j;
}

std::string Hex(const unsigned char* p, std::size_t n) {
  static const char kDigitos[] = "0123456789abcdef";
  std::string s;
  for (std::size_t i = 0; i < n; ++i) {
    s.push_back(kDigitos[p[i] >> 4]);
    s.push_back(kDigitos[p[i] & 0xF]);
  }
  return s;
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

int QVComandoDbVerify(const std::vector<std::string>& caminhos, std::optional<std::size_t> tamRegistro, bool bJson,
                      std::ostream& out, std::ostream& err) {
  std::vector<std::string> arquivos;
  std::vector<Achado> achados;
  bool bDiretorio = false;
  for (const std::string& c : caminhos) {
    std::vector<std::string> nomes;
    if (FAILED(QVListDirectory(c, &nomes))) {
      arquivos.push_back(c);
      continue;
    }
    bDiretorio = true;
    for (const std::string& n : nomes)
      if (EhDat(n) && !EhArquivoDeMarca(n)) arquivos.push_back(c + "/" + n);
    VerificaDiretorio(c, nomes, &achados);
  }
  if (arquivos.empty() && !bDiretorio) {
    err << "nenhum arquivo .dat encontrado\n";
    return 1;
  }
  std::vector<ArquivoVerificado> verificados;
  for (const std::string& a : arquivos) {
    ArquivoVerificado v{a, EQVTipoConteudo::Desconhecido, 0, {}};
    if (tamRegistro) {
      v.eTipo = EQVTipoConteudo::Registros;
      v.tamRegistro = *tamRegistro;
    } else if (const QVArquivoGE* conhecido = QVProcuraArquivoGE(Nome(a))) {
      v.eTipo = conhecido->tipo;
      v.tamRegistro = conhecido->tamRegistro;
    }
    v.r = QVVerificaArquivo(a, v.eTipo, v.tamRegistro);
    verificados.push_back(std::move(v));
  }
  const auto falhas =
      std::count_if(achados.begin(), achados.end(), [](const Achado& a) { return a.eNivel == ENivel::Falha; }) +
      std::count_if(verificados.begin(), verificados.end(), [](const ArquivoVerificado& v) { return FAILED(v.r.hr); });
  if (bJson) {
    nlohmann::json j = {{"achados", nlohmann::json::array()}, {"arquivos", nlohmann::json::array()}, {"falhas", falhas}};
    for (const Achado& a : achados) j["achados"].push_back(AchadoJson(a));
    for (const ArquivoVerificado& v : verificados) j["arquivos"].push_back(ArquivoJson(v));
    out << j.dump(2) << "\n";
  } else {
    for (const Achado& a : achados) EscreveAchado(a, out);
    for (const ArquivoVerificado& v : verificados) out << v.sCaminho << ": " << Resumo(v) << "\n";
  }
  return falhas == 0 ? 0 : 1;
}

int QVComandoDbDump(const std::string& sArquivo, std::optional<std::size_t> tamRegistro, bool bTexto, bool bJson,
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
  nlohmann::json j = nlohmann::json::array();
  if (bTexto) {
    auto* textos = static_cast<CQVTextFile*>(arquivo.get());
    for (QVUInt p = 1; p <= qtd; ++p) {
      std::string t;
      if (FAILED(textos->Le(p, &t))) continue;
      if (bJson)
        j.push_back({{"posicao", p}, {"tamanho", t.size()}, {"texto", QVAnsiToUtf8(t)}});
      else
        out << p << "\t" << t.size() << "\t" << QVAnsiToUtf8(t) << "\n";
    }
    if (bJson) out << j.dump(2) << "\n";
    return 0;
  }
  auto* registros = static_cast<CQVFileRegistros*>(arquivo.get());
  std::vector<unsigned char> r(*tamRegistro);
  char linha[160];
  for (QVUInt p = 1; p <= qtd; ++p) {
    if (FAILED(registros->LeRegistro(p, r.data()))) continue;
    if (bJson) {
      j.push_back({{"posicao", p}, {"bytes", Hex(r.data(), r.size())}});
      continue;
    }
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
  if (bJson) out << j.dump(2) << "\n";
  return 0;
}

int QVComandoDbControl(const std::string& sDir, const std::optional<std::string>& sEsquecer, bool bJson,
                       std::ostream& out, std::ostream& err) {
  const std::string sControle = sDir + "/" + QVDATABASE_NOME_ARQUIVO_CONTROLE_CRIACAO_ARQUIVOS;
  std::vector<std::string> nomesDir, listados;
  HRESULT hr = QVListDirectory(sDir, &nomesDir);
  if (SUCCEEDED(hr)) hr = LeControle(sDir, &listados);
  if (FAILED(hr)) {
    err << sControle << ": " << Status(hr) << " - " << QVDescricaoHResult(hr) << "\n";
    return 1;
  }

  if (sEsquecer) {
    // Names in the control are in the suite's code page; ours are UTF-8.
    const std::string sNome = QVUtf8ToAnsi(*sEsquecer);
    const auto it = std::find_if(listados.begin(), listados.end(),
                                 [&](const std::string& n) { return QVNomesIguais(n, sNome); });
    if (it == listados.end()) {
      err << *sEsquecer << ": não está listado em " << sControle << "; nada foi alterado\n";
      return 1;
    }
    const std::string sListado = *it;
    if (QVFileExists(sDir + "/" + sListado)) {
      err << *sEsquecer << ": o arquivo existe em " << sDir
          << "; só se esquece a entrada de um arquivo ausente; nada foi alterado\n";
      return 1;
    }
    CQVTextFile arquivoControle(QVDATABASE_NOME_ARQUIVO_CONTROLE_CRIACAO_ARQUIVOS, 0);
    arquivoControle.SetDiretorio(sDir);
    CQVDataBaseControleCriacaoArquivos controle;
    hr = controle.Inicializa(&arquivoControle);
    if (SUCCEEDED(hr)) hr = controle.RemoveControleCriacaoArquivos(sListado);
    if (hr == E_QVCR_ARQUIVO_TRA_ENCONTRADO) {
      err << *sEsquecer << ": " << Status(hr) << " - " << CQVDataBaseUtil::NomeArquivoTRA(sControle)
          << " foi deixado por uma regravação interrompida. Com o servidor parado, apague essa cópia e repita "
             "(o controle em si está intacto); nada foi alterado\n";
      return 1;
    }
    if (FAILED(hr)) {
      err << *sEsquecer << ": " << Status(hr) << " - " << QVDescricaoHResult(hr) << "\n";
      return 1;
    }
    // The administrator's change goes to the error log, so that the next
    // one sees what was done (the log has no other kind of row for events).
    QVEscreveLinhaErroTexto(nullptr, QVNomeQualificado(__PRETTY_FUNCTION__), QVNomeFonte(__FILE__), __LINE__,
                            "Entrada removida do controle de criação de arquivos por um administrador "
                            "(zelkorin db control --forget): o arquivo não existe mais",
                            {{"sNomeArquivo", QVAnsiToUtf8(sListado)}, {"sDiretorio", sDir}});
    if (bJson)
      out << nlohmann::json({{"controle", sControle}, {"removido", QVAnsiToUtf8(sListado)}}).dump(2) << "\n";
    else
      out << QVAnsiToUtf8(sListado) << ": entrada removida de " << sControle << "\n";
    return 0;
  }

  const bool bCopia = QVFileExists(CQVDataBaseUtil::NomeArquivoTRA(sControle));
  std::vector<std::pair<std::string, bool>> entradas;
  for (const std::string& n : listados) entradas.emplace_back(QVAnsiToUtf8(n), QVFileExists(sDir + "/" + n));
  const auto ausentes = std::count_if(entradas.begin(), entradas.end(), [](const auto& e) { return !e.second; });
  if (bJson) {
    nlohmann::json j = {{"controle", sControle}, {"arquivos", nlohmann::json::array()}, {"ausentes", ausentes},
                        {"copiaTra", bCopia}};
    for (const auto& [nome, bPresente] : entradas) j["arquivos"].push_back({{"nome", nome}, {"presente", bPresente}});
    out << j.dump(2) << "\n";
  } else {
    out << sControle << ": " << entradas.size() << (entradas.size() == 1 ? " arquivo listado, " : " arquivos listados, ")
        << ausentes << (ausentes == 1 ? " ausente\n" : " ausentes\n");
    for (const auto& [nome, bPresente] : entradas) out << (bPresente ? "  presente  " : "  AUSENTE   ") << nome << "\n";
    if (bCopia)
      out << CQVDataBaseUtil::NomeArquivoTRA(sControle) << ": " << Status(E_QVCR_ARQUIVO_TRA_ENCONTRADO)
          << " - cópia de uma regravação interrompida; --forget a recusa\n";
  }
  return ausentes == 0 && !bCopia ? 0 : 1;
}

void QVRegistraComandosDb(CLI::App& app, int* pCodigoSaida) {
  CLI::App* db = app.add_subcommand("db", "Inspeção dos arquivos de dados (só control --forget altera algo)");
  db->require_subcommand(1);

  auto* header = db->add_subcommand("header", "Preâmbulo e cabeçalho de um arquivo, em JSON");
  auto arquivoHeader = std::make_shared<std::string>();
  header->add_option("FILE", *arquivoHeader, "Arquivo de dados")->required();
  header->callback([=] { *pCodigoSaida = QVComandoDbHeader(*arquivoHeader, std::cout, std::cerr); });

  auto* verify = db->add_subcommand("verify", "Valida arquivos (ou os .dat de um diretório e o diretório como banco)");
  auto caminhos = std::make_shared<std::vector<std::string>>();
  auto tamVerify = std::make_shared<std::size_t>(0);
  auto jsonVerify = std::make_shared<bool>(false);
  verify->add_option("PATH", *caminhos, "Arquivos ou diretórios")->required();
  auto* optVerify = verify->add_option("--record-size", *tamVerify, "Tamanho do registro de todos os arquivos");
  verify->add_flag("--json", *jsonVerify, "Saída em JSON");
  verify->callback([=] {
    *pCodigoSaida = QVComandoDbVerify(*caminhos, optVerify->count() > 0 ? std::optional(*tamVerify) : std::nullopt,
                                      *jsonVerify, std::cout, std::cerr);
  });

  auto* dump = db->add_subcommand("dump", "Registros em hexadecimal, ou textos, com suas posições");
  auto arquivoDump = std::make_shared<std::string>();
  auto tamDump = std::make_shared<std::size_t>(0);
  auto texto = std::make_shared<bool>(false);
  auto jsonDump = std::make_shared<bool>(false);
  dump->add_option("FILE", *arquivoDump, "Arquivo de dados")->required();
  auto* optDump = dump->add_option("--record-size", *tamDump, "Tamanho do registro");
  dump->add_flag("--text", *texto, "Arquivo de textos");
  dump->add_flag("--json", *jsonDump, "Saída em JSON");
  dump->callback([=] {
    *pCodigoSaida = QVComandoDbDump(*arquivoDump, optDump->count() > 0 ? std::optional(*tamDump) : std::nullopt,
                                    *texto, *jsonDump, std::cout, std::cerr);
  });

  auto* control = db->add_subcommand(
      "control", "Controle de criação de arquivos de um diretório: arquivos listados e quais estão ausentes");
  auto dirControl = std::make_shared<std::string>();
  auto esquecer = std::make_shared<std::string>();
  auto raiz = std::make_shared<std::string>();
  auto jsonControl = std::make_shared<bool>(false);
  control->add_option("DIR", *dirControl, "Diretório de dados de um módulo de uma empresa")->required();
  auto* optEsquecer = control->add_option(
      "--forget", *esquecer, "Remove do controle a entrada de um arquivo ausente (registrado no log de erros)");
  control->add_option("--root", *raiz,
                      "Raiz dos dados, cujo log de erros recebe o registro (padrão: $ZELKORIN_ROOT ou "
                      "~/.local/share/zelkorin)");
  control->add_flag("--json", *jsonControl, "Saída em JSON");
  control->callback([=] {
    // The change is logged where the server of the same data root logs.
    if (!raiz->empty()) QVDefineRaizDados(*raiz);
    QVProfilerDefineDiretorioBase(QVRaizDados());
    *pCodigoSaida = QVComandoDbControl(*dirControl, optEsquecer->count() > 0 ? std::optional(*esquecer) : std::nullopt,
                                       *jsonControl, std::cout, std::cerr);
  });
}
