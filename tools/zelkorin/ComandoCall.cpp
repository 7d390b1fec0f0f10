#include "tools/zelkorin/ComandoCall.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>
#include <vector>

#include "df/qvlibex/QVLog.h"
#include "df/qvlibex/QVProfilerLog.h"
#include "df/qvlibex/QVStatus.h"
#include "ge/zelkorin/ZelkorinClasses.h"
#include "ge/zelkorin/json/ZelkorinJsonChamadas.h"
#include "platform/QVCodePage.h"
#include "platform/QVOsFile.h"
#include "platform/QVSystemInfo.h"
#include "suite/hostlink/QVSessaoSuite.h"

namespace {

struct Chamada {
  const QVClasseJson* classe;
  std::unique_ptr<IQVChamadaJson> chamada;
};

struct Documento {
  _REG_DF_INICIALIZAPS inicializacao;
  std::vector<Chamada> chamadas;
};

// The whole input, at most kQVMaxBytesDocumentoCall bytes.
bool LeEntrada(const std::string& arquivo, std::istream& in, std::string* pTexto, std::string* pMotivo) {
  const std::string sLimite = "o documento passa de " + std::to_string(kQVMaxBytesDocumentoCall >> 20) + " MiB";
  if (arquivo == "-") {
    char buf[65536];
    while (in.read(buf, sizeof buf) || in.gcount() > 0) {
      pTexto->append(buf, static_cast<std::size_t>(in.gcount()));
      if (pTexto->size() > kQVMaxBytesDocumentoCall) return *pMotivo = sLimite, false;
    }
    if (in.bad()) return *pMotivo = "erro de leitura da entrada padrão", false;
    return true;
  }
  auto f = QVCreateOsFile();
  std::uint64_t tamanho = 0;
  if (!f->Open(arquivo, QVFILE_MODE_READ | QVFILE_SHARE_DENY_NONE) || !f->GetLength(&tamanho)) {
    const HRESULT hr = HRESULT_FROM_WIN32(f->LastError());
    return *pMotivo = "não foi possível ler: " + QVHexStatus(hr) + " " + QVNomeStatus(hr), false;
  }
  if (tamanho > kQVMaxBytesDocumentoCall) return *pMotivo = sLimite, false;
  pTexto->resize(tamanho);
  std::size_t lidos = 0;
  if (!f->Read(pTexto->data(), pTexto->size(), &lidos) || lidos != tamanho) {
    const HRESULT hr = HRESULT_FROM_WIN32(f->LastError());
    return *pMotivo = "não foi possível ler: " + QVHexStatus(hr) + " " + QVNomeStatus(hr), false;
  }
  return true;
}

// "linha 3, coluna 15" of the byte at position n (1-based) of the text.
std::string Posicao(const std::string& texto, std::size_t n) {
  std::size_t linha = 1, coluna = 1;
  for (std::size_t i = 0; i + 1 < n && i < texto.size(); ++i) {
    if (texto[i] == '\n')
      ++linha, coluna = 1;
    else
      ++coluna;
  }
  return "linha " + std::to_string(linha) + ", coluna " + std::to_string(coluna);
}

HRESULT Recusa(QVErroJson* pErro, std::string sLugar, std::string sMotivo) {
  pErro->sLugar = std::move(sLugar);
  pErro->sMotivo = std::move(sMotivo);
  return E_INVALIDARG;
}

// The document's names, each once: an unknown one is refused.
HRESULT SoCampos(const QVJson& j, std::initializer_list<std::string_view> nomes, const std::string& sLugar,
                 QVErroJson* pErro) {
  for (const auto& [nome, v] : j.items()) {
    bool bConhecido = false;
    for (std::string_view n : nomes) bConhecido |= n == nome;
    if (!bConhecido) {
      std::string lista;
      for (std::string_view n : nomes) lista += (lista.empty() ? "" : ", ") + std::string(n);
      return Recusa(pErro, sLugar.empty() ? nome : sLugar + "." + nome, "campo desconhecido (" + lista + ")");
    }
  }
  return S_OK;
}

// Reads and checks the whole document; nothing is sent before it passes.
HRESULT LeDocumento(const QVJson& doc, const QVOpcoesCall& opcoes, Documento* pDoc, QVErroJson* pErro) {
  if (!doc.is_object())
    return Recusa(pErro, "", "o documento deve ser um objeto {\"empresa\", \"usuario\", \"chamadas\"}");
  if (const HRESULT hr = SoCampos(doc, {"empresa", "usuario", "chamadas"}, "", pErro); FAILED(hr)) return hr;

  std::string empresa = kQVEmpresaPadraoCall;
  if (opcoes.empresa) {
    empresa = *opcoes.empresa;
  } else if (doc.contains("empresa")) {
    if (!doc["empresa"].is_string()) return Recusa(pErro, "empresa", "esperado um texto");
    empresa = doc["empresa"].get<std::string>();
  }
  std::string ansi, motivo;
  if (FAILED(QVEmpresaParaRegistro(empresa, &ansi, &motivo))) return Recusa(pErro, "empresa", motivo);
  std::uint32_t usuario = opcoes.usuario.value_or(kQVUsuarioPadraoCall);
  if (!opcoes.usuario && doc.contains("usuario")) {
    static constexpr QVJsonCampo kUsuario = QVJsonCampoDe<std::uint32_t>("usuario", 0);
    std::uint64_t bytes = 0;
    if (const HRESULT hr = QVJsonEscreveCampo(kUsuario, doc["usuario"], &usuario, "usuario", &bytes, pErro); FAILED(hr))
      return hr;
  }
  QVDadosInicializacao d;
  d.empresa = ansi;
  d.usuario = usuario;
  d.numeroSessao = QVCurrentProcessId();
  d.aplicativo = "zelkorin call";
  d.moduleName = "ComandoCall";
  d.arquivoFonte = "tools/zelkorin/ComandoCall.cpp";
  d.linhaFonte = __LINE__;
  d.nomeUsuarioDominio = "call";
  pDoc->inicializacao = QVMontaInicializaPS(d);

  if (!doc.contains("chamadas") || !doc["chamadas"].is_array())
    return Recusa(pErro, "chamadas", "esperada a lista das chamadas");
  const QVJson& chamadas = doc["chamadas"];
  for (std::size_t i = 0; i < chamadas.size(); ++i) {
    const QVJson& c = chamadas[i];
    const std::string sLugar = "chamadas[" + std::to_string(i) + "]";
    if (!c.is_object()) return Recusa(pErro, sLugar, "esperado um objeto {\"classe\", \"metodo\", \"entrada\"}");
    if (const HRESULT hr = SoCampos(c, {"classe", "metodo", "entrada"}, sLugar, pErro); FAILED(hr)) return hr;
    const QVClasseJson* classe = c.contains("classe") && c["classe"].is_string()
                                     ? QVProcuraClasseJson(c["classe"].get_ref<const std::string&>())
                                     : nullptr;
    if (classe == nullptr) {
      std::string lista;
      for (const QVClasseJson& k : QVClassesJson()) lista += (lista.empty() ? "" : ", ") + std::string(k.nome);
      return Recusa(pErro, sLugar + ".classe",
                    (c.contains("classe") ? "classe desconhecida: " + QVJsonTexto(c["classe"], -1) : "falta a classe") +
                        " (classes: " + lista + ")");
    }
    if (!c.contains("metodo") || !c["metodo"].is_string())
      return Recusa(pErro, sLugar + ".metodo", "esperado o nome do método");
    Chamada chamada{classe, nullptr};
    const QVJson entrada = c.contains("entrada") ? c["entrada"] : QVJson();
    if (const HRESULT hr = QVPreparaChamadaJson(*classe, c["metodo"].get_ref<const std::string&>(), entrada,
                                                pDoc->inicializacao, sLugar, &chamada.chamada, pErro);
        FAILED(hr))
      return hr;
    pDoc->chamadas.push_back(std::move(chamada));
  }
  return S_OK;
}

QVJson Status(HRESULT hr) { return {{"hr", QVHexStatus(hr)}, {"status", QVNomeStatus(hr)}}; }

// The object's last error, as GetUltimoErro gives it.
QVJson UltimoErro(IQVUnknown* objeto) {
  _REG_DF_ERROPS erro{};
  const HRESULT hr = objeto->GetUltimoErro(&erro);
  if (FAILED(hr)) return {{"GetUltimoErro", Status(hr)}};
  QVJson j = Status(erro.hr);
  j["mensagem"] = QVAnsiToUtf8(QVLeCampoTexto(erro.cMensagem));
  return j;
}

// An object of a class, made when its first call comes.
struct Objeto {
  const QVClasseJson* classe = nullptr;
  void* pInterface = nullptr;
  CQVComPtr<IQVUnknown> unknown;  // the reference the object is held by
  HRESULT hrCriacao = S_OK;
  QVJson json;
};

}  // namespace

int QVComandoCall(const QVOpcoesCall& opcoes, std::istream& in, std::ostream& out, std::ostream& err) {
  const std::string nome = opcoes.arquivo == "-" ? "(entrada padrão)" : opcoes.arquivo;
  const auto recusa = [&](std::string_view expressao, const std::string& motivo) {
    QVLogaFalhaHr(QV_LOCAL, expressao, E_INVALIDARG, {{"arquivo", nome}, {"motivo", motivo}});
    err << "zelkorin call: " << nome << ": " << motivo << "\n";
    return 2;
  };
  std::string texto, motivo;
  if (!LeEntrada(opcoes.arquivo, in, &texto, &motivo))
    return recusa("LeEntrada(opcoes.arquivo, in, &texto, &motivo)", motivo);
  QVJson doc;
  try {
    doc = QVJson::parse(texto);
  } catch (const QVJson::parse_error& e) {
    return recusa("QVJson::parse(texto)", "JSON malformado (" + Posicao(texto, e.byte) + ")");
  }
  Documento documento;
  QVErroJson erro;
  if (FAILED(LeDocumento(doc, opcoes, &documento, &erro)))
    return recusa("LeDocumento(doc, opcoes, &documento, &erro)", erro.Texto());
  doc = QVJson();

  // Where the objects come from: a server, or this process.
  std::shared_ptr<CQVConexaoZelkorin> conexao;
  const bool bLocal = opcoes.conexao.sSocket.empty() && opcoes.conexao.sEndereco.empty();
  if (!bLocal) {
    const std::string onde =
        opcoes.conexao.sEndereco.empty() ? "unix:" + opcoes.conexao.sSocket : "tcp:" + opcoes.conexao.sEndereco;
    if (const HRESULT hr = QV_LOGA(CQVConexaoZelkorin::Conecta(opcoes.conexao, &conexao)); FAILED(hr)) {
      err << "zelkorin call: nenhum servidor responde em " << onde << ": " << QVHexStatus(hr) << " " << QVNomeStatus(hr)
          << "\n";
      return 1;
    }
  } else {
    if (!opcoes.raiz.empty()) QVDefineRaizDados(opcoes.raiz);
    std::error_code ec;
    std::filesystem::create_directories(QVRaizDados(), ec);
    QVProfilerDefineDiretorioBase(QVRaizDados());
    if (const HRESULT hr = QV_LOGA(QVRegistraClassesZelkorin()); FAILED(hr)) {
      err << "zelkorin call: as classes não puderam ser registradas: " << QVHexStatus(hr) << "\n";
      return 1;
    }
  }
  const auto cria = [&](const QVClasseJson& classe, void** pp) {
    return bLocal ? CoCreateInstance(classe.clsid, nullptr, CLSCTX_ALL, classe.iid, pp)
                  : conexao->CriaObjeto(classe.clsid, classe.iid, pp);
  };

  bool bTudoCerto = true;
  std::vector<Objeto> objetos;
  QVJson respostas = QVJson::array();
  for (Chamada& c : documento.chamadas) {
    auto o = std::find_if(objetos.begin(), objetos.end(), [&](const Objeto& x) { return x.classe == c.classe; });
    if (o == objetos.end()) {
      Objeto novo;
      novo.classe = c.classe;
      novo.hrCriacao = QV_LOGA(cria(*c.classe, &novo.pInterface));
      novo.json = {{"classe", c.classe->nome}, {"criacao", Status(novo.hrCriacao)}};
      if (SUCCEEDED(novo.hrCriacao)) {
        novo.unknown = CQVComPtr<IQVUnknown>::Attach(c.classe->comoUnknown(novo.pInterface));
        // A first call to Inicializa_Padrao initialises the object itself.
        if (c.chamada->Metodo() != "Inicializa_Padrao") {
          const HRESULT hr = novo.unknown->Inicializa_Padrao(documento.inicializacao);
          novo.json["inicializacao"] = Status(hr);
          if (FAILED(hr)) {
            novo.json["inicializacao"]["ultimoErro"] = UltimoErro(novo.unknown.get());
            bTudoCerto = false;
          }
        }
      } else {
        bTudoCerto = false;
      }
      objetos.push_back(std::move(novo));
      o = objetos.end() - 1;
    }
    QVJson resposta = {{"metodo", c.chamada->Metodo()}};
    if (FAILED(o->hrCriacao)) {
      resposta.update(Status(o->hrCriacao));
      resposta["ultimoErro"] = {{"mensagem", "o objeto " + std::string(c.classe->nome) + " não foi criado"}};
      bTudoCerto = false;
    } else {
      const HRESULT hr = c.chamada->Executa(o->pInterface);
      resposta.update(Status(hr));
      if (SUCCEEDED(hr)) {
        resposta["saida"] = c.chamada->Saida();
      } else {
        resposta["ultimoErro"] = UltimoErro(o->unknown.get());
        bTudoCerto = false;
      }
    }
    // What the call handed back is freed as soon as it is printed.
    c.chamada.reset();
    respostas.push_back(std::move(resposta));
  }
  QVJson j = {{"respostas", std::move(respostas)}, {"objetos", QVJson::array()}};
  for (const Objeto& o : objetos) j["objetos"].push_back(o.json);
  out << QVJsonTexto(j) << "\n";
  objetos.clear();
  if (bLocal) QVRevogaClassesZelkorin();
  return bTudoCerto ? 0 : 1;
}

void QVRegistraComandoCall(CLI::App& app, int* pCodigoSaida) {
  auto* call = app.add_subcommand(
      "call", "Executa as chamadas de um documento JSON nas classes do servidor e imprime as respostas em JSON");
  auto opcoes = std::make_shared<QVOpcoesCall>();
  auto empresa = std::make_shared<std::string>();
  auto usuario = std::make_shared<std::uint32_t>(0);
  auto* optSocket = call->add_option("--socket", opcoes->conexao.sSocket, "Socket Unix de um servidor em execução");
  auto* optConnect = call->add_option("--connect", opcoes->conexao.sEndereco, "HOST:PORTA de um servidor (TCP)");
  auto* optRaiz = call->add_option(
      "--root", opcoes->raiz,
      "Sem servidor: raiz dos dados neste processo (padrão: $ZELKORIN_ROOT ou ~/.local/share/zelkorin)");
  optSocket->excludes(optConnect);
  optRaiz->excludes(optSocket)->excludes(optConnect);
  auto* optEmpresa = call->add_option(
      "--empresa", *empresa,
      std::string("Empresa da sessão; vale mais que a do documento (padrão: ") + kQVEmpresaPadraoCall + ")");
  optEmpresa->check(QVRecusaEmpresaParaRegistro);
  auto* optUsuario = call->add_option(
      "--usuario", *usuario,
      "Código do usuário; vale mais que o do documento (padrão: " + std::to_string(kQVUsuarioPadraoCall) + ")");
  call->add_option("--timeout-ms", opcoes->conexao.ulTempoLimiteMs, "Tempo limite de cada chamada a um servidor")
      ->capture_default_str();
  call->add_option("ARQUIVO", opcoes->arquivo, "Documento JSON das chamadas (- para a entrada padrão)")->required();
  call->callback([=] {
    QVOpcoesCall o = *opcoes;
    if (optEmpresa->count() > 0) o.empresa = *empresa;
    if (optUsuario->count() > 0) o.usuario = *usuario;
    *pCodigoSaida = QVComandoCall(o, std::cin, std::cout, std::cerr);
  });
}
