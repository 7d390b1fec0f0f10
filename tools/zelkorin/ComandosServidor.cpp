#include "tools/zelkorin/ComandosServidor.h"

#include <CLI/CLI.hpp>
#include <cstring>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <nlohmann/json.hpp>

#include "core/QVRPCDLL/QVFrame.h"
#include "df/qvlibex/QVDescritorRegistro.h"
#include "df/qvlibex/QVLog.h"
#include "df/qvlibex/QVProfilerLog.h"
#include "df/qvlibex/QVStatus.h"
#include "df/qvlibex/QVVersao.h"
#include "ge/zelkorin/ZelkorinClasses.h"
#include "ge/zelkorin/ZelkorinInterfaces.h"
#include "platform/QVCodePage.h"
#include "platform/QVSystemInfo.h"
#include "platform/QVTaskMem.h"
#include "suite/hostlink/QVSessaoSuite.h"

namespace {

std::string Status(HRESULT hr) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "0x%08X", static_cast<unsigned>(hr));
  const std::string nome = QVNomeSimbolico(hr);
  return nome.empty() ? buf : std::string(buf) + " " + nome;
}

// What one object answered to the status questions.
struct Respostas {
  HRESULT hrCria = S_OK;
  HRESULT hrInicializa = S_OK;
  HRESULT hrKeepAlive = S_OK;
  std::int32_t bOK = 0;
  HRESULT hrUltimoErro = S_OK;
  HRESULT hrErroGuardado = S_OK;
  std::string sMensagemErro;
  HRESULT hrEstatisticas = S_OK;
  nlohmann::json estatisticas;
};

_REG_DF_INICIALIZAPS RegistroInicializacao(const QVOpcoesStatus& opcoes) {
  QVDadosInicializacao d;
  d.empresa = QVUtf8ToAnsi(opcoes.empresa);
  d.usuario = opcoes.usuario;
  d.numeroSessao = QVCurrentProcessId();
  d.aplicativo = "zelkorin status";
  d.moduleName = "ComandosServidor";
  d.arquivoFonte = "tools/zelkorin/ComandosServidor.cpp";
  d.linhaFonte = __LINE__;
  d.nomeUsuarioDominio = "status";
  return QVMontaInicializaPS(d);
}

Respostas Pergunta(CQVConexaoZelkorin& conexao, REFCLSID clsid, const QVOpcoesStatus& opcoes) {
  Respostas r;
  CQVComPtr<IQVUnknown> objeto;
  r.hrCria = QV_LOGA(conexao.CriaObjeto(clsid, IID_IQVUnknown, objeto.ppv()));
  if (FAILED(r.hrCria)) return r;
  r.hrInicializa = objeto->Inicializa_Padrao(RegistroInicializacao(opcoes));
  r.hrKeepAlive = objeto->KeepAlive(&r.bOK);
  _REG_DF_ERROPS erro;
  r.hrUltimoErro = objeto->GetUltimoErro(&erro);
  if (SUCCEEDED(r.hrUltimoErro)) {
    r.hrErroGuardado = erro.hr;
    r.sMensagemErro = QVAnsiToUtf8(QVLeCampoTexto(erro.cMensagem));
  }
  // The request narrows the statistics as the options asked.
  nlohmann::json pedido = nlohmann::json::object();
  if (!opcoes.estatisticasEmpresa.empty()) pedido["empresa"] = opcoes.estatisticasEmpresa;
  if (!opcoes.estatisticasDia.empty()) pedido["dia"] = opcoes.estatisticasDia;
  std::string textoPedido = pedido.dump();
  _REG_DF_FUNCAO_GENERICAPS entrada{};
  entrada.ulQtdBytes = static_cast<std::uint32_t>(textoPedido.size());
  entrada.pListaBytes = reinterpret_cast<std::uint8_t*>(textoPedido.data());
  _REG_DF_FUNCAO_GENERICAPS* saida = nullptr;
  r.hrEstatisticas = objeto->FuncaoGenerica(QV_FUNCAO_GENERICA_ESTATISTICAS_USO, entrada, &saida);
  if (SUCCEEDED(r.hrEstatisticas) && saida != nullptr && saida->pListaBytes != nullptr)
    r.estatisticas = nlohmann::json::parse(reinterpret_cast<const char*>(saida->pListaBytes), nullptr, false);
  if (saida != nullptr) {
    QVLibera(saida);
    CoTaskMemFree(saida);
  }
  return r;
}

// Why an object gave no statistics, or "" when it did.
std::string SemEstatisticas(const Respostas& r) {
  if (FAILED(r.hrCria)) return "CriaObjeto " + Status(r.hrCria);
  if (FAILED(r.hrEstatisticas))
    return "FuncaoGenerica(" + std::to_string(QV_FUNCAO_GENERICA_ESTATISTICAS_USO) + ") " + Status(r.hrEstatisticas) +
           " - " + QVGetDescricaoHRESULT(r.hrEstatisticas);
  if (!r.estatisticas.is_object()) return "a resposta não é um objeto JSON";
  return {};
}

nlohmann::json ComoJson(const Respostas& r) {
  nlohmann::json j = {{"criaObjeto", Status(r.hrCria)}};
  if (FAILED(r.hrCria)) return j;
  j["inicializaPadrao"] = Status(r.hrInicializa);
  j["keepAlive"] = {{"hr", Status(r.hrKeepAlive)}, {"bOK", r.bOK}};
  j["ultimoErro"] = {{"hr", Status(r.hrUltimoErro)}, {"erro", Status(r.hrErroGuardado)}, {"mensagem", r.sMensagemErro}};
  j["estatisticas"] = {{"hr", Status(r.hrEstatisticas)}};
  return j;
}

void EscreveTabela(const std::string& classe, const Respostas& r, std::ostream& out) {
  out << classe << "\n  CriaObjeto          " << Status(r.hrCria) << "\n";
  if (FAILED(r.hrCria)) return;
  out << "  Inicializa_Padrao   " << Status(r.hrInicializa) << "\n"
      << "  KeepAlive           " << Status(r.hrKeepAlive) << "  pbOK = " << r.bOK << "\n"
      << "  GetUltimoErro       " << Status(r.hrUltimoErro) << "  erro " << Status(r.hrErroGuardado)
      << (r.sMensagemErro.empty() ? "" : " \"" + r.sMensagemErro + "\"") << "\n"
      << "  FuncaoGenerica(" << QV_FUNCAO_GENERICA_ESTATISTICAS_USO << ") " << Status(r.hrEstatisticas) << "\n";
}

// The server process's statistics, one row per company, day, class,
// method and code.
void EscreveEstatisticas(const nlohmann::json& j, std::ostream& out) {
  if (!j.is_object()) return;
  const nlohmann::json s = j.value("servidor", nlohmann::json::object());
  out << "Servidor: " << s.value("programa", "?") << " " << s.value("versao", "?") << ", pid "
      << s.value("pid", 0) << ", computador " << s.value("computador", "?") << ", objetos ativos "
      << s.value("objetosAtivos", 0) << "\n";
  out << std::left << std::setw(20) << "empresa" << std::setw(12) << "dia" << std::setw(20) << "classe"
      << std::setw(28) << "método" << std::right << std::setw(7) << "código" << std::setw(10) << "chamadas"
      << std::setw(10) << "total ms" << std::setw(8) << "menor" << std::setw(8) << "maior" << "\n";
  const nlohmann::json processo = j.value("processo", nlohmann::json::object());
  for (const auto& [empresa, dias] : processo.items())
    for (const auto& [dia, classes] : dias.items())
      for (const auto& [classe, metodos] : classes.items())
        for (const auto& [metodo, codigos] : metodos.items())
          for (const auto& [codigo, c] : codigos.items())
            out << std::left << std::setw(20) << empresa << std::setw(12) << dia << std::setw(20) << classe
                << std::setw(28) << metodo << std::right << std::setw(7) << codigo << std::setw(10)
                << c.value("chamadas", 0) << std::setw(10) << c.value("totalMs", 0) << std::setw(8)
                << c.value("menorMs", 0) << std::setw(8) << c.value("maiorMs", 0) << "\n";
  if (j.value("truncado", false))
    out << "(resposta limitada: " << j.value("omitidos", 0)
        << " dias de empresa mais antigos omitidos; filtre com --estatisticas-empresa ou --estatisticas-dia)\n";
}

}  // namespace

std::string QVSocketPadrao(const std::string& raiz) { return raiz + "/zelkorin.sock"; }

int QVComandoServe(const std::string& raiz, QVOpcoesServidor opcoes, std::ostream& err) {
  if (!raiz.empty()) QVDefineRaizDados(raiz);
  const std::string sRaiz = QVRaizDados();
  std::error_code ec;
  std::filesystem::create_directories(sRaiz, ec);
  if (ec) {
    err << "zelkorin: não foi possível criar a raiz de dados " << sRaiz << ": " << ec.message() << "\n";
    return 1;
  }
  QVProfilerDefineDiretorioBase(sRaiz);
  // TCP is checked before anything is served: nothing on the wire
  // authenticates a client, so an address other machines can reach must be
  // asked for in so many words.
  if (!opcoes.sEscuta.empty()) {
    QVEnderecoTcp endereco;
    const HRESULT hr = QVEnderecoEscuta(opcoes.sEscuta, &endereco);
    if (FAILED(hr)) {
      err << "zelkorin: --listen " << opcoes.sEscuta << ": endereço inválido: " << Status(hr) << " - "
          << QVGetDescricaoHRESULT(hr) << " (use PORTA, HOST:PORTA, [IPV6]:PORTA ou *:PORTA)\n";
      return 2;
    }
    if (!endereco.bLoopback && !opcoes.bPermiteRemoto) {
      err << "zelkorin: --listen " << opcoes.sEscuta << " (tcp:" << endereco.sTexto
          << ") aceitaria conexões de outras máquinas, e nada autentica os clientes; use --allow-remote para "
             "permitir\n";
      return 2;
    }
  }
  if (opcoes.sSocket.empty()) opcoes.sSocket = QVSocketPadrao(sRaiz);
  opcoes.log = [&err](const std::string& linha) { err << "zelkorin: " << linha << std::endl; };
  err << "zelkorin " << QVVersaoPrograma() << " (pid " << QVCurrentProcessId() << "): raiz de dados " << sRaiz
      << std::endl;
  HRESULT hr = QV_LOGA(QVRegistraClassesZelkorin());
  if (SUCCEEDED(hr)) hr = QV_LOGA(QVExecutaServidor(opcoes));
  QVRevogaClassesZelkorin();
  if (FAILED(hr)) {
    err << "zelkorin: o servidor não pôde iniciar: " << Status(hr) << " - " << QVGetDescricaoHRESULT(hr) << "\n";
    return 1;
  }
  return 0;
}

int QVComandoStatus(const QVOpcoesStatus& opcoes, std::ostream& out, std::ostream& err) {
  std::shared_ptr<CQVConexaoZelkorin> conexao;
  const HRESULT hr = QV_LOGA(CQVConexaoZelkorin::Conecta(opcoes.conexao, &conexao));
  const std::string onde =
      opcoes.conexao.sEndereco.empty() ? "unix:" + opcoes.conexao.sSocket : "tcp:" + opcoes.conexao.sEndereco;
  if (FAILED(hr)) {
    err << "zelkorin: nenhum servidor responde em " << onde << ": " << Status(hr) << "\n";
    return 1;
  }
  const Respostas atendimento = Pergunta(*conexao, CLSID_QVGE_Atendimento, opcoes);
  const Respostas projeto = Pergunta(*conexao, CLSID_QVGE_Projeto, opcoes);
  if (conexao->Desconectada()) {
    err << "zelkorin: o servidor em " << onde << " encerrou a conexão\n";
    return 1;
  }
  // The statistics read last are the freshest.
  const nlohmann::json& estatisticas = projeto.estatisticas.is_object() ? projeto.estatisticas : atendimento.estatisticas;
  const std::string semEstatisticas =
      estatisticas.is_object()
          ? ""
          : "QVGE_Atendimento: " + SemEstatisticas(atendimento) + "; QVGE_Projeto: " + SemEstatisticas(projeto);
  if (opcoes.json) {
    nlohmann::json j = {{"servidor", onde},
                        {"QVGE_Atendimento", ComoJson(atendimento)},
                        {"QVGE_Projeto", ComoJson(projeto)},
                        {"estatisticas", estatisticas.is_object() ? estatisticas : nlohmann::json()}};
    out << j.dump(2) << "\n";
  } else {
    out << "Servidor em " << onde << "\n";
    EscreveTabela("QVGE_Atendimento", atendimento, out);
    EscreveTabela("QVGE_Projeto", projeto, out);
    EscreveEstatisticas(estatisticas, out);
  }
  if (!semEstatisticas.empty()) {
    err << "zelkorin: o servidor em " << onde << " não deu estatísticas (" << semEstatisticas << ")\n";
    return 2;
  }
  return 0;
}

void QVRegistraComandosServidor(CLI::App& app, int* pCodigoSaida) {
  auto* serve = app.add_subcommand("serve", "Serve as duas classes até SIGTERM ou SIGINT");
  auto raiz = std::make_shared<std::string>();
  auto opServ = std::make_shared<QVOpcoesServidor>();
  serve->add_option("--root", *raiz, "Raiz dos dados (padrão: $ZELKORIN_ROOT ou ~/.local/share/zelkorin)");
  serve->add_option("--socket", opServ->sSocket, "Socket Unix, criado com modo 0660 (padrão: RAIZ/zelkorin.sock)");
  serve->add_option("--listen", opServ->sEscuta,
                    "Também TCP: PORTA (só na interface local), HOST:PORTA, [IPV6]:PORTA ou *:PORTA (desligado por "
                    "padrão)");
  serve->add_flag("--allow-remote", opServ->bPermiteRemoto,
                  "Permite que --listen aceite conexões de outras máquinas (não há autenticação: use um firewall)");
  serve->add_option("--max-conexoes", opServ->servidor.ulMaxConexoes,
                    "Conexões abertas ao mesmo tempo; as demais são fechadas ao chegar")
      ->check(CLI::PositiveNumber)
      ->capture_default_str();
  serve->add_option("--memoria-mensagens", opServ->servidor.uiOrcamentoBytes,
                    "Bytes de mensagens recebidas em memória, somando todas as conexões; uma mensagem que não cabe "
                    "espera")
      ->check(CLI::PositiveNumber)
      ->capture_default_str();
  serve->add_option("--max-pendentes", opServ->servidor.ulMaxPendentes,
                    "Chamadas por conexão cujas respostas ainda não saíram; no limite a conexão deixa de ser lida")
      ->check(CLI::PositiveNumber)
      ->capture_default_str();
  serve->add_option("--tempo-ocioso-ms", opServ->servidor.ulTempoOciosoMs,
                    "Silêncio no meio de uma mensagem (ou espera por memória de mensagens) que derruba a conexão")
      ->check(CLI::PositiveNumber)
      ->capture_default_str();
  serve->add_option("--max-elementos", opServ->limites.ulMaxElementos, "Limite de elementos por lista recebida")
      ->check(CLI::PositiveNumber);
  serve->add_option("--max-caracteres", opServ->limites.ulMaxCaracteresBstr, "Limite de caracteres por string")
      ->check(CLI::PositiveNumber);
  serve->add_option("--max-bytes", opServ->limites.uiMaxBytes, "Limite de bytes anexos por registro")
      ->check(CLI::PositiveNumber);
  serve->callback([=] { *pCodigoSaida = QVComandoServe(*raiz, *opServ, std::cerr); });

  auto* status = app.add_subcommand("status", "Pergunta a um servidor em execução como ele está");
  auto opStatus = std::make_shared<QVOpcoesStatus>();
  auto* optSocket = status->add_option("--socket", opStatus->conexao.sSocket, "Socket Unix do servidor");
  auto* optConnect = status->add_option("--connect", opStatus->conexao.sEndereco, "HOST:PORTA do servidor (TCP)");
  optSocket->excludes(optConnect);
  status->add_option("--empresa", opStatus->empresa, "Empresa da sessão")->check(QVRecusaEmpresaParaRegistro);
  status->add_option("--usuario", opStatus->usuario, "Código do usuário");
  status->add_option("--timeout-ms", opStatus->conexao.ulTempoLimiteMs, "Tempo limite de cada chamada");
  status->add_option("--estatisticas-empresa", opStatus->estatisticasEmpresa, "Só as estatísticas desta empresa");
  status->add_option("--estatisticas-dia", opStatus->estatisticasDia, "Só as estatísticas deste dia (AAAA-MM-DD)");
  status->add_flag("--json", opStatus->json, "Saída em JSON");
  status->callback([=] {
    QVOpcoesStatus o = *opStatus;
    if (o.conexao.sSocket.empty() && o.conexao.sEndereco.empty()) o.conexao.sSocket = QVSocketPadrao(QVRaizDados());
    *pCodigoSaida = QVComandoStatus(o, std::cout, std::cerr);
  });
}
