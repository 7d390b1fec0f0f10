#include "tools/zelkorin/ComandosSuite.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "df/qvlibex/QVLog.h"
#include "df/qvlibex/QVProfilerLog.h"
#include "df/qvlibex/QVStatus.h"
#include "platform/QVOsFile.h"
#include "suite/hostlink/QVSessaoSuite.h"
#include "suite/store/CQVBancoSuite.h"
#include "suite/store/QVAmostraSuite.h"
#include "suite/store/QVTabelasSuite.h"

// What fails in the library is logged there, with its reason; the commands
// only say it, on stderr.
namespace {

std::string Status(HRESULT hr) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "0x%08X", static_cast<unsigned>(hr));
  const std::string nome = QVNomeSimbolico(hr);
  return (nome.empty() ? std::string() : nome + " ") + buf;
}

// The message of a failure, its status and the exit code: 2 when the
// command line asked for what cannot be, 1 for the rest.
int Falhou(const char* sComando, HRESULT hr, const std::string& sErro, std::ostream& err) {
  err << "zelkorin suite " << sComando << ": " << (sErro.empty() ? QVDescricaoHResult(hr) : sErro) << " (" << Status(hr)
      << ")\n";
  return hr == E_INVALIDARG ? 2 : 1;
}

// A mistake of the command line, logged like the library's failures.
int Recusa(const QVLocalFonte& local, const char* sComando, std::string_view expressao, const std::string& sErro,
           std::ostream& err) {
  QVLogaFalhaHr(local, expressao, E_INVALIDARG, {{"sErro", sErro}});
  return Falhou(sComando, E_INVALIDARG, sErro, err);
}

bool AbreBanco(const char* sComando, std::shared_ptr<CQVBancoSuite>* ppBanco, std::ostream& err) {
  const HRESULT hr = QVBancoSuite(ppBanco);
  if (SUCCEEDED(hr)) return true;
  Falhou(sComando, hr,
         "não foi possível abrir os cadastros da suíte em " + QVRaizDados() + "/" + kQVArquivoBancoSuite + ": " +
             QVDescricaoHResult(hr),
         err);
  return false;
}

QVSaidaTabela Para(std::ostream& out) {
  return [&out](std::string_view s) -> HRESULT {
    out.write(s.data(), static_cast<std::streamsize>(s.size()));
    return out ? S_OK : HRESULT_FROM_WIN32(ERROR_WRITE_FAULT);
  };
}

// An export's file: written under another name and renamed over the
// destination once whole, so that a failed export leaves no half file.
class CArquivoSaida {
 public:
  explicit CArquivoSaida(std::string sCaminho) : m_sCaminho(std::move(sCaminho)), m_sParcial(m_sCaminho + ".parcial") {}
  ~CArquivoSaida() {
    if (m_pArquivo->IsOpen()) {
      m_pArquivo->Close();
      static_cast<void>(QV_LOGA(QVDeleteFile(m_sParcial)));
    }
  }

  HRESULT Abre() {
    if (!m_pArquivo->Open(m_sParcial, QVFILE_MODE_WRITE | QVFILE_SHARE_EXCLUSIVE | QVFILE_MODE_CREATE))
      return Falha("m_pArquivo->Open(m_sParcial, QVFILE_MODE_WRITE | QVFILE_SHARE_EXCLUSIVE | QVFILE_MODE_CREATE)");
    return S_OK;
  }
  HRESULT Escreve(std::string_view s) {
    m_sBuffer += s;
    return m_sBuffer.size() >= (64u << 10) ? Descarrega() : S_OK;
  }
  HRESULT Conclui() {
    QV_CHECK(Descarrega());
    if (!m_pArquivo->Flush()) return Falha("m_pArquivo->Flush()");
    m_pArquivo->Close();
    QV_CHECK(QVMoveFile(m_sParcial, m_sCaminho));
    return S_OK;
  }

 private:
  HRESULT Descarrega() {
    if (!m_pArquivo->Write(m_sBuffer.data(), m_sBuffer.size()))
      return Falha("m_pArquivo->Write(m_sBuffer.data(), m_sBuffer.size())");
    m_sBuffer.clear();
    return S_OK;
  }
  HRESULT Falha(std::string_view expressao) {
    const HRESULT hr = HRESULT_FROM_WIN32(m_pArquivo->LastError());
    QVLogaFalhaHr(QV_LOCAL, expressao, hr, {{"m_sParcial", m_sParcial}});
    return hr;
  }

  std::string m_sCaminho;
  std::string m_sParcial;
  std::unique_ptr<IQVOsFile> m_pArquivo = QVCreateOsFile();
  std::string m_sBuffer;
};

const QVTabelaSuite* Tabela(const char* sComando, const std::string& sNome, std::ostream& err) {
  const QVTabelaSuite* p = QVProcuraTabelaSuite(sNome);
  if (p == nullptr)
    Recusa(QV_LOCAL, sComando, "QVProcuraTabelaSuite(o.sTabela)",
           "tabela desconhecida: " + sNome + " (zelkorin suite tables lista as tabelas)", err);
  return p;
}

// The format asked for, else the file's extension's, else CSV when
// bPadrao; false after saying why.
bool Formato(const char* sComando, const QVOpcoesSuite& o, bool bPadrao, EQVFormatoTabela* pFormato,
             std::ostream& err) {
  if (!o.sFormato.empty()) {
    if (QVLeFormatoTabela(o.sFormato, pFormato)) return true;
    Recusa(QV_LOCAL, sComando, "QVLeFormatoTabela(o.sFormato, pFormato)",
           "formato desconhecido: " + o.sFormato + " (use csv ou json)", err);
    return false;
  }
  if (QVFormatoDoArquivo(o.sArquivo, pFormato)) return true;
  *pFormato = EQVFormatoTabela::Csv;
  if (bPadrao) return true;
  Recusa(QV_LOCAL, sComando, "QVFormatoDoArquivo(o.sArquivo, pFormato)",
         "a extensão de " + o.sArquivo + " não diz o formato: use .csv ou .json, ou --formato csv|json", err);
  return false;
}

// The store, the table and its company, or the exit code of what failed.
struct Alvo {
  std::shared_ptr<CQVBancoSuite> pBanco;
  const QVTabelaSuite* pTabela = nullptr;
  std::uint32_t lEmpresa = 0;
};
int AbreAlvo(const char* sComando, const std::string& sTabela, const std::string& sEmpresa, Alvo* pAlvo,
             std::ostream& err) {
  if (pAlvo->pTabela == nullptr && (pAlvo->pTabela = Tabela(sComando, sTabela, err)) == nullptr) return 2;
  if (!AbreBanco(sComando, &pAlvo->pBanco, err)) return 1;
  std::string sErro;
  const HRESULT hr = QVEmpresaDaTabela(*pAlvo->pBanco, *pAlvo->pTabela, sEmpresa, &pAlvo->lEmpresa, &sErro);
  return FAILED(hr) ? Falhou(sComando, hr, sErro, err) : 0;
}

void PreparaRaiz(const std::string& raiz) {
  if (!raiz.empty()) QVDefineRaizDados(raiz);
  QVProfilerDefineDiretorioBase(QVRaizDados());
}

}  // namespace

int QVComandoSuiteInit(const QVOpcoesSuite& o, std::ostream& out, std::ostream& err) {
  std::shared_ptr<CQVBancoSuite> pBanco;
  if (!AbreBanco("init", &pBanco, err)) return 1;
  HRESULT hrAmostra = S_OK;
  if (o.bAmostra && FAILED(hrAmostra = QVCriaAmostraSuite(*pBanco)))
    return Falhou("init", hrAmostra, "a empresa de exemplo não foi criada; nada dela ficou nos cadastros", err);
  const char* sAmostra = !o.bAmostra ? nullptr : hrAmostra == S_OK ? "criada" : "existente";
  if (o.bJson) {
    nlohmann::json j = {{"banco", pBanco->Caminho()}, {"versaoEsquema", pBanco->VersaoEsquema()}};
    j["amostra"] = sAmostra != nullptr ? nlohmann::json(sAmostra) : nlohmann::json(nullptr);
    out << j.dump(2) << "\n";
    return 0;
  }
  out << "Cadastros da suíte: " << pBanco->Caminho() << " (esquema versão " << pBanco->VersaoEsquema() << ")\n";
  if (sAmostra != nullptr)
    out << "Empresa de exemplo " << kQVEmpresaAmostra
        << (hrAmostra == S_OK ? ": criada\n" : ": já existe; nada foi alterado\n");
  return 0;
}

int QVComandoSuiteImport(const QVOpcoesSuite& o, std::ostream& out, std::ostream& err) {
  Alvo alvo;
  EQVFormatoTabela eFormato{};
  if ((alvo.pTabela = Tabela("import", o.sTabela, err)) == nullptr || !Formato("import", o, false, &eFormato, err))
    return 2;
  if (alvo.pTabela->bSomenteLeitura)
    return Recusa(QV_LOCAL, "import", "alvo.pTabela->bSomenteLeitura",
                  "a tabela " + o.sTabela + " é somente de leitura: o servidor a escreve", err);
  std::string sConteudo, sErro;
  if (const HRESULT hr = QVLeArquivoImportacao(o.sArquivo, &sConteudo, &sErro); FAILED(hr))
    return Falhou("import", hr, sErro, err);
  if (const int rc = AbreAlvo("import", o.sTabela, o.sEmpresa, &alvo, err); rc != 0) return rc;
  std::size_t iLinhas = 0;
  const HRESULT hr = QVImportaTabela(*alvo.pBanco, *alvo.pTabela, alvo.lEmpresa, sConteudo, eFormato, &iLinhas, &sErro);
  if (FAILED(hr)) return Falhou("import", hr, o.sArquivo + ": " + sErro, err);
  if (o.bJson)
    out << nlohmann::json({{"tabela", o.sTabela}, {"arquivo", o.sArquivo}, {"linhas", iLinhas}}).dump(2) << "\n";
  else
    out << iLinhas << (iLinhas == 1 ? " linha importada em " : " linhas importadas em ") << o.sTabela << "\n";
  return 0;
}

int QVComandoSuiteExport(const QVOpcoesSuite& o, std::ostream& out, std::ostream& err) {
  EQVFormatoTabela eFormato{};
  if (!Formato("export", o, true, &eFormato, err)) return 2;
  Alvo alvo;
  if (const int rc = AbreAlvo("export", o.sTabela, o.sEmpresa, &alvo, err); rc != 0) return rc;
  std::size_t iLinhas = 0;
  if (o.sArquivo.empty()) {
    const HRESULT hr = QVExportaTabela(*alvo.pBanco, *alvo.pTabela, alvo.lEmpresa, eFormato, Para(out));
    return FAILED(hr) ? Falhou("export", hr, "", err) : 0;
  }
  CArquivoSaida arquivo(o.sArquivo);
  HRESULT hr = arquivo.Abre();
  if (SUCCEEDED(hr))
    hr = QVExportaTabela(
        *alvo.pBanco, *alvo.pTabela, alvo.lEmpresa, eFormato, [&](std::string_view s) { return arquivo.Escreve(s); },
        &iLinhas);
  if (SUCCEEDED(hr)) hr = arquivo.Conclui();
  if (FAILED(hr)) return Falhou("export", hr, o.sArquivo + ": " + QVDescricaoHResult(hr), err);
  out << iLinhas << (iLinhas == 1 ? " linha de " : " linhas de ") << o.sTabela << " exportadas para " << o.sArquivo
      << "\n";
  return 0;
}

int QVComandoSuiteList(const QVOpcoesSuite& o, std::ostream& out, std::ostream& err) {
  Alvo alvo;
  if (const int rc = AbreAlvo("list", o.sTabela, o.sEmpresa, &alvo, err); rc != 0) return rc;
  const HRESULT hr =
      o.bJson ? QVExportaTabela(*alvo.pBanco, *alvo.pTabela, alvo.lEmpresa, EQVFormatoTabela::Json, Para(out))
              : QVListaTabela(*alvo.pBanco, *alvo.pTabela, alvo.lEmpresa, Para(out));
  return FAILED(hr) ? Falhou("list", hr, "", err) : 0;
}

int QVComandoSuiteShow(const QVOpcoesSuite& o, std::ostream& out, std::ostream& err) {
  const QVVisaoSuite* pVisao = QVProcuraVisaoSuite(o.sTabela);
  if (pVisao == nullptr)
    return Recusa(QV_LOCAL, "show", "QVProcuraVisaoSuite(o.sTabela)",
                  "não há o que mostrar como " + o.sTabela + " (use acompanhamentos, eventos, log ou vinculos)", err);
  Alvo alvo;
  if (const int rc = AbreAlvo("show", pVisao->sTabela, o.sEmpresa, &alvo, err); rc != 0) return rc;
  const HRESULT hr = QVMostraVisao(*alvo.pBanco, *pVisao, alvo.lEmpresa, o.bJson, Para(out));
  return FAILED(hr) ? Falhou("show", hr, "", err) : 0;
}

int QVComandoSuiteTables(const QVOpcoesSuite& o, std::ostream& out, std::ostream& err) {
  const HRESULT hr = QVDescreveTabelas(o.bJson, Para(out));
  return FAILED(hr) ? Falhou("tables", hr, "", err) : 0;
}

void QVRegistraComandosSuite(CLI::App& app, int* pCodigoSaida) {
  CLI::App* suite = app.add_subcommand(
      "suite", "Cadastros da suíte: empresas, usuários, cadastros básicos e o que o servidor gravou");
  suite->require_subcommand(1);
  auto raiz = std::make_shared<std::string>();
  auto o = std::make_shared<QVOpcoesSuite>();
  using Comando = int (*)(const QVOpcoesSuite&, std::ostream&, std::ostream&);
  const auto novo = [&](const char* sNome, const char* sDescricao, Comando executa) {
    CLI::App* c = suite->add_subcommand(sNome, sDescricao);
    c->add_option("--root", *raiz, "Raiz dos dados (padrão: $ZELKORIN_ROOT ou ~/.local/share/zelkorin)");
    c->callback([=] {
      PreparaRaiz(*raiz);
      *pCodigoSaida = executa(*o, std::cout, std::cerr);
    });
    return c;
  };
  const auto tabela = [&](CLI::App* c, const char* sDescricao) {
    c->add_option("TABELA", o->sTabela, sDescricao)->required();
  };
  const auto empresa = [&](CLI::App* c) {
    c->add_option("--empresa", o->sEmpresa, "Empresa das linhas (obrigatória se houver mais de uma)");
  };
  const auto json = [&](CLI::App* c) { c->add_flag("--json", o->bJson, "Saída em JSON"); };

  CLI::App* init =
      novo("init", "Cria ou atualiza os cadastros; mostra o arquivo e a versão do esquema", QVComandoSuiteInit);
  init->add_flag("--sample", o->bAmostra, "Cria a empresa de exemplo EMPRESA_EXEMPLO se ela não existir");
  json(init);

  CLI::App* import = novo("import", "Importa um arquivo CSV ou JSON numa tabela: tudo ou nada", QVComandoSuiteImport);
  tabela(import, "Tabela (zelkorin suite tables)");
  import->add_option("ARQUIVO", o->sArquivo, "Arquivo .csv ou .json (até 64 MiB)")->required();
  empresa(import);
  import->add_option("--formato", o->sFormato, "csv ou json (padrão: pela extensão do arquivo)");
  json(import);

  CLI::App* exporta = novo("export", "Exporta uma tabela em CSV ou JSON, como import a lê", QVComandoSuiteExport);
  tabela(exporta, "Tabela (zelkorin suite tables)");
  empresa(exporta);
  exporta->add_option("--formato", o->sFormato, "csv ou json (padrão: pela extensão de --output, ou csv)");
  exporta->add_option("--output", o->sArquivo, "Arquivo de saída (padrão: a saída padrão)");

  CLI::App* lista = novo("list", "Linhas de uma tabela", QVComandoSuiteList);
  tabela(lista, "Tabela (zelkorin suite tables)");
  empresa(lista);
  json(lista);

  CLI::App* mostra = novo("show",
                          "Acompanhamentos com seus serviços, eventos com suas listas, o log de transações "
                          "(mais recentes primeiro) ou os vínculos",
                          QVComandoSuiteShow);
  mostra->add_option("ASSUNTO", o->sTabela, "acompanhamentos, eventos, log ou vinculos")->required();
  empresa(mostra);
  json(mostra);

  json(novo("tables", "As tabelas, suas colunas e tipos", QVComandoSuiteTables));
}
