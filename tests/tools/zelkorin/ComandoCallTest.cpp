// zelkorin call: documents of calls run in this process and through a
// server, the objects' initialisation, and documents that are refused
// before anything is sent.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <fstream>
#include <sstream>

#include "ge/zelkorin/json/ZelkorinJson.h"
#include "tests/support/QVServidorTeste.h"
#include "tests/support/QVTestSupport.h"
#include "tools/zelkorin/ComandoCall.h"

namespace {

struct CResultado {
  int codigo;
  QVJson saida;  // null when nothing was printed
  std::string erros;
};

// The test's company and user, as options.
QVOpcoesCall DaEmpresaTeste(QVOpcoesConexao conexao = {}) {
  QVTesteCadastraEmpresa("EMPRESA_TESTE");
  return {.conexao = conexao, .empresa = "EMPRESA_TESTE", .usuario = kQVTesteUsuario};
}

CResultado Executa(const std::string& documento, QVOpcoesCall opcoes) {
  if (opcoes.arquivo.empty()) opcoes.arquivo = "-";
  std::istringstream in(documento);
  std::ostringstream out, err;
  CResultado r{QVComandoCall(opcoes, in, out, err), nullptr, err.str()};
  if (!out.str().empty()) r.saida = QVJson::parse(out.str());
  return r;
}

}  // namespace

TEST(ComandoCall, ChamadasNesteProcesso) {
  CResultado r = Executa(R"({"chamadas": [
      {"classe": "QVGE_Atendimento", "metodo": "KeepAlive"},
      {"classe": "QVGE_Projeto", "metodo": "LeRegistro", "entrada": {"lPtr": 1}},
      {"classe": "QVGE_Atendimento", "metodo": "GetUltimoErro"}]})",
                         DaEmpresaTeste());
  EXPECT_EQ(r.codigo, 1) << r.erros;  // LeRegistro is not built yet
  const QVJson& respostas = r.saida["respostas"];
  ASSERT_EQ(respostas.size(), 3u) << QVJsonTexto(r.saida);
  EXPECT_EQ(respostas[0], QVJson::parse(R"({"metodo": "KeepAlive", "hr": "0x00000000", "status": "S_OK",
                                            "saida": {"pbOK": true}})"));
  EXPECT_EQ(respostas[1]["status"], "E_NOTIMPL");
  EXPECT_FALSE(respostas[1].contains("saida"));
  EXPECT_EQ(respostas[1]["ultimoErro"]["hr"], "0x80004001");
  EXPECT_EQ(respostas[2]["saida"]["pregErrops"]["hr"], "0x00000000");  // each object has its own
  ASSERT_EQ(r.saida["objetos"].size(), 2u);
  EXPECT_EQ(r.saida["objetos"][1], QVJson::parse(R"({"classe": "QVGE_Projeto",
      "criacao": {"hr": "0x00000000", "status": "S_OK"}, "inicializacao": {"hr": "0x00000000", "status": "S_OK"}})"));

  // A first call to Inicializa_Padrao takes the place of the object's own.
  r = Executa(R"({"chamadas": [
      {"classe": "QVGE_Projeto", "metodo": "Inicializa_Padrao", "entrada": {"regps": {"usVersaoVireo": 117}}},
      {"classe": "QVGE_Projeto", "metodo": "KeepAlive"},
      {"classe": "QVGE_Projeto", "metodo": "LeRegistro"}]})",
              DaEmpresaTeste());
  EXPECT_EQ(r.codigo, 1);
  EXPECT_EQ(r.saida["respostas"][0]["status"], "E_QVCR_VERSAO_INCOMPATIVEL");
  EXPECT_EQ(r.saida["respostas"][1]["status"], "S_OK");
  EXPECT_EQ(r.saida["respostas"][2]["hr"], "0x81080A04");
  EXPECT_FALSE(r.saida["objetos"][0].contains("inicializacao"));

  // The document's company and user, when no option overrides them.
  QVTesteCadastraEmpresa("EMPRESA_TESTE");
  r = Executa(R"({"empresa": "EMPRESA_TESTE", "usuario": 7, "chamadas": [
      {"classe": "QVGE_Atendimento", "metodo": "FuncaoGenerica",
       "entrada": {"ulFuncao": 9001, "regInps": {"pListaBytes": "{\"empresa\": \"EMPRESA_TESTE\"}"}}}]})",
              {});
  EXPECT_EQ(r.codigo, 0) << r.erros;
  const QVJson estatisticas =
      QVJson::parse(r.saida["respostas"][0]["saida"]["ppregOutps"]["pListaBytes"].get<std::string>());
  EXPECT_TRUE(estatisticas["objeto"].contains("EMPRESA_TESTE")) << estatisticas;
}

TEST(ComandoCall, PorUmServidorEPeloPrograma) {
  CQVServidorTeste servidor("zelkorin");
  ASSERT_TRUE(servidor.Pronto());
  const std::string documento = R"({"chamadas": [{"classe": "QVGE_Projeto", "metodo": "KeepAlive"},
                                                 {"classe": "QVGE_Projeto", "metodo": "GetUltimoErro"}]})";
  CResultado r = Executa(documento, DaEmpresaTeste({.sSocket = servidor.Socket()}));
  EXPECT_EQ(r.codigo, 0) << r.erros;
  EXPECT_EQ(r.saida["respostas"][0]["saida"]["pbOK"], true);
  EXPECT_EQ(r.saida["objetos"][0]["inicializacao"]["status"], "S_OK");

  // The program itself, from a file, with the options overriding the
  // document's company.
  const std::string arquivo = QVTesteDiretorio() + "/chamadas.json";
  std::ofstream(arquivo) << documento;
  CQVProcessoTeste p({"call", "--socket", servidor.Socket(), "--empresa", "EMPRESA_TESTE", "--usuario",
                      std::to_string(kQVTesteUsuario), arquivo},
                     ZELKORIN_PROGRAMA);
  EXPECT_TRUE(p.EsperaLinha(R"(        "pbOK": true)")) << p.Erros();
  const int status = p.Espera();
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << p.Erros();

  r = Executa(documento, DaEmpresaTeste({.sSocket = QVTesteDiretorio() + "/ninguem.sock"}));
  EXPECT_EQ(r.codigo, 1);
  EXPECT_NE(r.erros.find("nenhum servidor responde em unix:"), std::string::npos) << r.erros;
}

// Every refusal names the place, logs one line and sends nothing: not even
// the calls before the one at fault.
TEST(ComandoCall, DocumentoRuimNaoEnviaNada) {
  const std::string kKeepAlive = R"({"classe": "QVGE_Atendimento", "metodo": "KeepAlive"})";
  const struct {
    std::string documento;
    const char* erro;
    QVOpcoesCall opcoes;
  } casos[] = {
      {"", "(entrada padrão): JSON malformado (linha 1, coluna 1)"},
      {"{\n  \"chamadas\": [\n    {\"classe\": }", "JSON malformado (linha 3, coluna 16)"},
      {std::string(kQVMaxBytesDocumentoCall + 1, ' '), "o documento passa de 16 MiB"},
      {"[]", "o documento deve ser um objeto"},
      {R"({"chamada": []})", "chamada: campo desconhecido (empresa, usuario, chamadas)"},
      {R"({})", "chamadas: esperada a lista das chamadas"},
      {R"({"empresa": 5, "chamadas": []})", "empresa: esperado um texto"},
      {R"({"chamadas": []})", "empresa: caractere fora da página de código", {.empresa = "日本"}},
      {R"({"usuario": -1, "chamadas": []})", "usuario: o valor -1 não cabe em u32"},
      {R"({"chamadas": [3]})", "chamadas[0]: esperado um objeto"},
      {R"({"chamadas": [)" + kKeepAlive + R"(, {"classe": "QVGE_Atendimentos", "metodo": "KeepAlive"}]})",
       "chamadas[1].classe: classe desconhecida: \"QVGE_Atendimentos\" (classes: QVGE_Atendimento, QVGE_Projeto)"},
      {R"({"chamadas": [{"metodo": "KeepAlive"}]})", "chamadas[0].classe: falta a classe"},
      {R"({"chamadas": [{"classe": "QVGE_Projeto"}]})", "chamadas[0].metodo: esperado o nome do método"},
      {R"({"chamadas": [{"classe": "QVGE_Projeto", "metodo": "KeepAlive", "saida": {}}]})",
       "chamadas[0].saida: campo desconhecido (classe, metodo, entrada)"},
      {R"({"chamadas": [)" + kKeepAlive +
           R"(, {"classe": "QVGE_Projeto", "metodo": "Grava", "entrada": {"regProjeto": {"lPos": "1"}}}]})",
       "chamadas[1].entrada.regProjeto.lPos: esperado um número inteiro"},
      {"{}", "não foi possível ler: 0x80070002", {.arquivo = QVTesteDiretorio() + "/nao-existe.json"}},
  };
  for (const auto& c : casos) {
    SCOPED_TRACE(c.erro);
    const std::size_t linhas = QVTesteLinhasErro().size();
    const CResultado r = Executa(c.documento, c.opcoes);
    EXPECT_EQ(r.codigo, 2);
    EXPECT_TRUE(r.saida.is_null());
    EXPECT_NE(r.erros.find(c.erro), std::string::npos) << r.erros;
    EXPECT_EQ(QVTesteLinhasErro().size(), linhas + 1);
  }
}

// The example the README points to reads, and its calls that answer today
// answer.
TEST(ComandoCall, OExemploLe) {
  QVOpcoesCall opcoes = DaEmpresaTeste();
  opcoes.arquivo = ZELKORIN_EXEMPLOS "/chamadas.json";
  const CResultado r = Executa("", opcoes);
  EXPECT_NE(r.codigo, 2) << r.erros;
  ASSERT_EQ(r.saida["respostas"].size(), 6u);
  EXPECT_EQ(r.saida["respostas"][0]["status"], "S_OK");
  EXPECT_EQ(r.saida["respostas"][5]["status"], "S_OK");
}
