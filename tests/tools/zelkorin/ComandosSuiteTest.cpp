// `zelkorin suite` through the program: the sample on a new data root, the
// lists it gives, an export to a file, and the exit codes and messages of
// what goes wrong.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>

#include "suite/hostlink/QVSessaoSuite.h"
#include "tests/support/QVServidorTeste.h"
#include "tests/support/QVTestSupport.h"
#include "tests/support/QVTesteArquivos.h"
#include "tools/zelkorin/ComandosSuite.h"

TEST(ComandosSuite, AmostraListasExportacaoEErros) {
  const std::string raiz = QVTesteNovoDiretorio("raiz-suite");
  QVTesteGravaBytes(raiz + "/contratos.csv", "codigo,ponteiro_cliente,data_inicio\nX1,1,2024-01-31\nX2,1,31/01/2024\n");
  QVTesteGravaBytes(raiz + "/nada.txt", "");
  const std::tuple<std::vector<std::string>, int, std::string, const char*> casos[] = {
      // arguments, exit code, a line of stdout, a piece of stderr
      {{"init", "--sample"}, 0, "Empresa de exemplo EMPRESA_EXEMPLO: criada", ""},
      {{"init", "--sample"}, 0, "Empresa de exemplo EMPRESA_EXEMPLO: já existe; nada foi alterado", ""},
      {{"list", "filiais_usuarios", "--json"}, 0, R"({"ponteiro_usuario":1,"ponteiro_filial":1},)", ""},
      {{"list", "usuarios_empresas", "--empresa", "empresa_exemplo", "--json"}, 0, R"({"ponteiro_usuario":1},)", ""},
      {{"list", "unidades"}, 0, "(3 linhas)", ""},
      {{"export", "clientes", "--output", raiz + "/clientes.json"},
       0,
       "5 linhas de clientes exportadas para " + raiz + "/clientes.json",
       ""},
      {{"import", "contratos", raiz + "/contratos.csv"},
       1,
       "",
       "linha 3, coluna data_inicio: data inválida: \"31/01/2024\" (use AAAA-MM-DD); nada foi importado "
       "(E_QVDF_IMPORTACAO_LINHA_INVALIDA 0x8004093B)"},
      {{"import", "clientes", raiz + "/clientes.json"}, 1, "", "índice 0, coluna ponteiro: repete a chave"},
      {{"import", "clientes", raiz + "/nada.txt"}, 2, "", "a extensão de "},
      {{"import", "eventos", raiz + "/contratos.csv"}, 2, "", "somente de leitura"},
      {{"list", "agenda"}, 2, "", "tabela desconhecida: agenda"},
      {{"show", "agenda"}, 2, "", "use acompanhamentos, eventos, log ou vinculos"},
      {{"export", "clientes", "--formato", "xml"}, 2, "", "formato desconhecido: xml"},
      {{"list", "clientes", "--empresa", "NENHUMA"}, 1, "", "empresa não cadastrada: \"NENHUMA\""},
      {{"list", "municipios", "--empresa", "EMPRESA_EXEMPLO"}, 2, "", "é de todas as empresas"},
      {{"export", "clientes", "--output", raiz + "/sem-pasta/c.csv"}, 1, "", "sem-pasta/c.csv: "},
  };
  for (auto [args, codigo, saida, erro] : casos) {
    SCOPED_TRACE(args[0] + " " + args[1]);
    args.insert(args.begin(), "suite");
    args.insert(args.end(), {"--root", raiz});
    CQVProcessoTeste p(args, ZELKORIN_PROGRAMA);
    if (!saida.empty()) {
      EXPECT_TRUE(p.EsperaLinha(saida)) << saida;
    }
    const int status = p.Espera();
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == codigo) << status << "\n" << p.Erros();
    EXPECT_NE(p.Erros().find(erro), std::string::npos) << p.Erros();
  }
  // The export is whole and alone: no partial file beside it, none for the
  // export that failed.
  const auto clientes = nlohmann::json::parse(QVTesteLeArquivo(raiz + "/clientes.json"));
  ASSERT_EQ(clientes.size(), 5u);
  EXPECT_EQ(clientes[0]["codigo"], "0001");
  EXPECT_FALSE(std::filesystem::exists(raiz + "/clientes.json.parcial"));
  EXPECT_FALSE(std::filesystem::exists(raiz + "/sem-pasta"));
}

// With two companies, a per-company table needs --empresa; a table of every
// company needs none.
TEST(ComandosSuite, EmpresaObrigatoriaComDuasEmpresas) {
  const std::string raiz = QVTesteNovoDiretorio("raiz-duas");
  QVTesteGravaBytes(raiz + "/empresas.csv", "nome\nSEGUNDA\n");
  for (const std::vector<std::string>& args :
       {std::vector<std::string>{"init", "--sample"}, {"import", "empresas", raiz + "/empresas.csv"}}) {
    std::vector<std::string> a = {"suite"};
    a.insert(a.end(), args.begin(), args.end());
    a.insert(a.end(), {"--root", raiz});
    CQVProcessoTeste p(a, ZELKORIN_PROGRAMA);
    ASSERT_EQ(p.Espera(), 0) << p.Erros();
  }
  QVOpcoesSuite o{.sTabela = "clientes"};
  std::ostringstream out, err;
  QVDefineRaizDados(raiz);
  EXPECT_EQ(QVComandoSuiteList(o, out, err), 2);
  EXPECT_NE(err.str().find("há 2 empresas: informe --empresa"), std::string::npos) << err.str();
  o.sTabela = "municipios";
  EXPECT_EQ(QVComandoSuiteList(o, out, err), 0) << err.str();
  EXPECT_NE(out.str().find("(6 linhas)"), std::string::npos) << out.str();
  QVDefineRaizDados(QVTesteDiretorio() + "/dados");
}
