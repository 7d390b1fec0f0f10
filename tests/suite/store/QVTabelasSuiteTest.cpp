// Tables in and out of the suite store: a bad row leaves the store as it
// was and says where; what export writes, import reads back to the same
// rows; the sample company.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>

#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVDatas.h"
#include "suite/store/CQVBancoSuite.h"
#include "suite/store/QVAmostraSuite.h"
#include "suite/store/QVTabelasSuite.h"
#include "tests/support/QVTestSupport.h"

namespace {

constexpr auto kCsv = EQVFormatoTabela::Csv;
constexpr auto kJson = EQVFormatoTabela::Json;
// The sample company's pointer in a fresh store, and another company's.
constexpr std::uint32_t kExemplo = 1;
constexpr std::uint32_t kOutra = 2;

std::shared_ptr<CQVBancoSuite> NovoBanco(const std::string& nome) {
  std::shared_ptr<CQVBancoSuite> p;
  EXPECT_EQ(CQVBancoSuite::Abre(QVTesteNovoDiretorio(nome), &p), S_OK);
  return p;
}

const QVTabelaSuite& Tabela(const char* nome) { return *QVProcuraTabelaSuite(nome); }

QVSaidaTabela Em(std::string* p) {
  return [p](std::string_view s) {
    p->append(s);
    return S_OK;
  };
}

std::string Exporta(CQVBancoSuite& b, const QVTabelaSuite& t, EQVFormatoTabela f = kCsv) {
  std::string s;
  EXPECT_EQ(QVExportaTabela(b, t, t.PorEmpresa() ? kExemplo : 0, f, Em(&s)), S_OK) << t.sNome;
  return s;
}

// Every row of the store that concerns the sample company.
std::string Tudo(CQVBancoSuite& b) {
  std::string s;
  for (const QVTabelaSuite& t : QVTabelasSuite()) s += Exporta(b, t);
  return s;
}

std::string Consulta(CQVBancoSuite& b, const std::string& sql) {
  auto trava = b.Trava();
  CQVComandoSuite cmd;
  bool bLinha = false;
  EXPECT_EQ(b.Prepara(sql.c_str(), &cmd), S_OK) << sql;
  EXPECT_EQ(cmd.Passo(&bLinha), S_OK) << sql;
  return bLinha ? cmd.Texto(0) : "(nada)";
}

class QVTabelasSuiteTest : public ::testing::Test {
 protected:
  void SetUp() override {
    m_p = NovoBanco("origem");
    ASSERT_EQ(QVCriaAmostraSuite(*m_p), S_OK);
    auto trava = m_p->Trava();
    ASSERT_EQ(m_p->ExecutaSql("INSERT INTO empresas (nome) VALUES ('OUTRA')"), S_OK);
  }
  HRESULT Importa(const char* tabela, std::uint32_t lEmpresa, std::string_view texto, EQVFormatoTabela f,
                  std::size_t* pLinhas = nullptr) {
    m_sErro.clear();
    return QVImportaTabela(*m_p, Tabela(tabela), lEmpresa, texto, f, pLinhas, &m_sErro);
  }
  std::shared_ptr<CQVBancoSuite> m_p;
  std::string m_sErro;
};

}  // namespace

// The descriptions are the schema's: every table, its columns in order,
// which are required or nullable, and their defaults.
TEST_F(QVTabelasSuiteTest, DescricoesSaoAsDoEsquema) {
  std::set<std::string> tabelas, descritas;
  for (std::string sNome = Consulta(*m_p, "SELECT group_concat(name, ' ') FROM sqlite_master WHERE type = 'table'");
       !sNome.empty();) {
    const std::size_t i = sNome.find(' ');
    tabelas.insert(sNome.substr(0, i));
    sNome = i == std::string::npos ? "" : sNome.substr(i + 1);
  }
  auto trava = m_p->Trava();
  for (const QVTabelaSuite& t : QVTabelasSuite()) {
    descritas.insert(t.sNome);
    const std::string sql = "PRAGMA table_info(" + std::string(t.sNome) + ")";
    CQVComandoSuite cmd;
    ASSERT_EQ(m_p->Prepara(sql.c_str(), &cmd), S_OK);
    std::size_t i = 0;
    for (bool b = false; cmd.Passo(&b) == S_OK && b; ++i) {
      ASSERT_LT(i, t.colunas.size()) << t.sNome;
      const QVColunaSuite& c = t.colunas[i];
      SCOPED_TRACE(std::string(t.sNome) + "." + c.sNome);
      EXPECT_EQ(cmd.Texto(1), c.sNome);
      if (c.eTipo == EQVTipoColunaSuite::Empresa) continue;  // always filled
      const bool bNaoNulo = cmd.Inteiro(3) != 0, bPadrao = !cmd.Nulo(4);
      EXPECT_EQ(c.Obrigatoria(), bNaoNulo && !bPadrao);
      EXPECT_EQ((c.fOpcoes & kQVColunaNula) != 0, !bNaoNulo);
      if (!bPadrao) {
        EXPECT_EQ(c.sPadrao, nullptr);
        continue;
      }
      QVValorSuite v;
      ASSERT_TRUE(QVLeCampoSuite(c, "", &v, nullptr));
      const auto* p = std::get_if<std::int64_t>(&v);
      EXPECT_EQ(cmd.Texto(4), p != nullptr ? std::to_string(*p) : "'" + std::get<std::string>(v) + "'");
    }
    EXPECT_EQ(i, t.colunas.size()) << t.sNome;
  }
  EXPECT_EQ(descritas, tabelas);
}

// One bad row, after a good one, and the whole file is refused: the message
// says where and which column, the error log has it, the store is as it was.
TEST_F(QVTabelasSuiteTest, LinhaRuimRecusaOArquivoInteiro) {
  const std::tuple<const char*, std::uint32_t, EQVFormatoTabela, const char*, const char*> casos[] = {
      {"contratos", kExemplo, kCsv, "codigo,ponteiro_cliente,data_inicio\r\nX1,1,2024-01-31\r\nX2,1,2024-02-30\r\n",
       "linha 3, coluna data_inicio: data inválida"},
      {"contratos", kExemplo, kJson,
       R"([{"codigo":"X1","ponteiro_cliente":1},{"codigo":"X2","ponteiro_cliente":1,"data_fim":"31/01/2024"}])",
       "índice 1, coluna data_fim: data inválida"},
      {"servicos", kExemplo, kCsv, "descricao,valor_unitario\nS1,\"1.234,56\"\nS2,12.34\n",
       "linha 3, coluna valor_unitario: valor monetário inválido: \"12.34\""},
      {"servicos", kExemplo, kJson,
       R"([{"descricao":"S1","valor_unitario":1234.56},{"descricao":"S2","valor_unitario":0.12345}])",
       "índice 1, coluna valor_unitario: valor monetário inválido"},
      {"clientes", kExemplo, kCsv, "nome,apelido\nA,x\n", "linha 1, coluna apelido: coluna desconhecida"},
      {"clientes", kExemplo, kJson, R"([{"nome":"A"},{"nome":"B","apelido":"x"}])",
       "índice 1, coluna apelido: coluna desconhecida"},
      {"clientes", kExemplo, kCsv, "codigo, nome \n1,A\n2,\n", "linha 3, coluna nome: obrigatória e vazia"},
      {"clientes", kExemplo, kCsv, "codigo\n1\n", "linha 1, coluna nome: obrigatória e ausente do cabeçalho"},
      {"clientes", kExemplo, kJson, R"([{"nome":"A"},{"codigo":"2"}])", "índice 1, coluna nome: obrigatória e ausente"},
      {"unidades", 0, kCsv, "sigla,descricao\nCX,Caixa\nh,Hora\n", "linha 3, coluna sigla: repete a chave"},
      {"unidades", 0, kJson, R"([{"sigla":"CX"},{"sigla":"cx"}])", "índice 1, coluna sigla: repete a chave"},
      {"notas_fiscais", kExemplo, kCsv, "numero,serie,data_emissao,ponteiro_cliente\n1001,1,2024-05-01,1\n",
       "linha 2, colunas serie, numero: repete a chave"},
      {"parametros_ge", kExemplo, kJson, "[{}]", "índice 0, coluna ponteiro_empresa: repete a chave"},
      {"empresas", 0, kCsv, "nome\nAção Ltda\nAÇÃO LTDA\n",
       "linha 3, coluna nome: \"AÇÃO LTDA\" é a empresa \"Ação Ltda\""},
      {"empresas", 0, kCsv, "nome\nCON\n", "linha 2, coluna nome: nome de empresa inválido"},
      {"contratos", kExemplo, kCsv, "codigo,ponteiro_cliente\nX1,1\nX2,99\n",
       "linha 3, coluna ponteiro_cliente: nenhuma linha de clientes da empresa tem o ponteiro 99"},
      // A client of another company is no client of this one.
      {"contratos", kOutra, kJson, R"([{"codigo":"X1","ponteiro_cliente":1}])", "índice 0, coluna ponteiro_cliente"},
      {"filiais_usuarios", kExemplo, kCsv, "ponteiro_usuario,ponteiro_filial\n2,2\n7,1\n",
       "linha 3, coluna ponteiro_usuario: nenhuma linha de usuarios tem o ponteiro 7"},
      {"clientes", kExemplo, kCsv, "nome,ativo\n\"A\nsegunda linha\",sim\nB,talvez\n",
       "linha 4, coluna ativo: valor lógico inválido"},
      {"clientes", kExemplo, kJson, R"([{"nome":"A","ativo":true},{"nome":"B","ativo":2}])", "índice 1, coluna ativo"},
      {"vinculos", kExemplo, kCsv, "ma,posicao,campo\n2024-13,1,9\n", "linha 2, coluna ma: mês inválido"},
      {"unidades", 0, kCsv, "sigla,casas_decimais\nXX,5\n",
       "linha 2, coluna casas_decimais: 5 fora do intervalo de 0 a 4"},
      {"servicos", kExemplo, kCsv, "descricao,tipo\nA,X\n", "coluna tipo: valor \"X\" não aceito"},
      {"clientes", kExemplo, kCsv, "nome\n\xC3\x28\n", "linha 2, coluna nome: texto que não é UTF-8 válido"},
      {"municipios", 0, kCsv, "ponteiro,nome\n0,Lugar\n", "linha 2, coluna ponteiro: 0 fora do intervalo de 1"},
      // Not CSV, not the JSON of a table.
      {"clientes", kExemplo, kCsv, "", "linha 1: arquivo vazio"},
      {"clientes", kExemplo, kCsv, "nome\nA\n\"B\n\nC\n", "linha 3: aspas abertas e nunca fechadas"},
      {"clientes", kExemplo, kCsv, "nome,codigo\nA\"b,1\n", "linha 2: aspas no meio de um campo sem aspas"},
      {"clientes", kExemplo, kCsv, "nome,codigo\n\"A\"x,1\n", "linha 2: texto depois das aspas"},
      {"clientes", kExemplo, kCsv, "nome,codigo\nA,1,2\n", "linha 2: 3 campos, e o cabeçalho tem 2"},
      {"clientes", kExemplo, kCsv, "nome,nome\nA,B\n", "linha 1, coluna nome: repetida no cabeçalho"},
      {"clientes", kExemplo, kJson, R"({"nome":"A"})", "início do arquivo: o arquivo JSON deve ser uma lista"},
      {"clientes", kExemplo, kJson, R"([{"nome":"A"},5])", "índice 1: esperado um objeto"},
      {"clientes", kExemplo, kJson, R"([{"nome":{"x":1}}])", "índice 0, coluna nome: valor composto"},
      {"clientes", kExemplo, kJson, R"([{"nome":"A"},)", "índice 1: JSON inválido"},
      {"clientes", kExemplo, kJson, R"([{"nome":"A","nome":"B"}])", "índice 0, coluna nome: repetida no objeto"},
      {"clientes", kExemplo, kJson, R"([{"nome":5}])", "índice 0, coluna nome: número numa coluna de texto"},
      {"clientes", kExemplo, kJson, R"([{"nome":"A","ponteiro_empresa":2}])",
       "coluna ponteiro_empresa: a empresa vem de --empresa"},
  };
  const std::string antes = Tudo(*m_p);
  for (const auto& [tabela, lEmpresa, f, texto, esperado] : casos) {
    SCOPED_TRACE(std::string(tabela) + " " + texto);
    QVTesteLimpaLog();
    std::size_t iLinhas = 9;
    EXPECT_EQ(Importa(tabela, lEmpresa, texto, f, &iLinhas), E_QVDF_IMPORTACAO_LINHA_INVALIDA);
    EXPECT_NE(m_sErro.find(esperado), std::string::npos) << m_sErro;
    EXPECT_NE(m_sErro.find("; nada foi importado"), std::string::npos) << m_sErro;
    EXPECT_EQ(iLinhas, 0u);
    const auto linhas = QVTesteLinhasErro();  // one, where the row was refused
    ASSERT_EQ(linhas.size(), 1u);
    EXPECT_NE(linhas[0].find(esperado), std::string::npos) << linhas[0];
  }
  EXPECT_EQ(Tudo(*m_p), antes);
  EXPECT_EQ(QVImportaTabela(*m_p, Tabela("acompanhamentos"), kExemplo, "[]", kJson, nullptr, &m_sErro), E_INVALIDARG);
}

// What CSV must quote, currency to the fourth decimal, a month; export of
// every table in both formats, import into an empty store, the same rows.
TEST_F(QVTabelasSuiteTest, ExportarEImportarNumBancoVazioDaAsMesmasLinhas) {
  const std::string sNome = "vírgula, \"aspas\"\nLF\r\nCRLF";
  ASSERT_EQ(Importa("clientes", kExemplo,
                    "codigo,nome,endereco\r\nQ1,\"vírgula, \"\"aspas\"\"\nLF\r\nCRLF\",\" a \"\r\n", kCsv),
            S_OK)
      << m_sErro;
  EXPECT_EQ(Consulta(*m_p, "SELECT nome || '|' || endereco FROM clientes WHERE codigo = 'Q1'"), sNome + "| a ");
  std::size_t iLinhas = 0;
  ASSERT_EQ(
      Importa("servicos", kExemplo,
              R"([{"descricao":"fração","valor_unitario":"-1.234,5678"},{"descricao":"n","valor_unitario":1234.567}])",
              kJson, &iLinhas),
      S_OK)
      << m_sErro;
  EXPECT_EQ(iLinhas, 2u);
  EXPECT_EQ(Consulta(*m_p, "SELECT group_concat(valor_unitario) FROM servicos WHERE ponteiro > 10"),
            "-12345678,12345670");
  ASSERT_EQ(
      Importa("notas_fiscais", kExemplo,
              "numero,data_emissao,ponteiro_cliente,ma_atendimento,valor\n9,1900-01-01,6,1848-01,\"0,0001\"\n", kCsv),
      S_OK)
      << m_sErro;

  for (const EQVFormatoTabela f : {kCsv, kJson}) {
    auto destino = NovoBanco(f == kCsv ? "destino-csv" : "destino-json");
    for (const QVTabelaSuite& t : QVTabelasSuite()) {
      if (t.bSomenteLeitura) continue;
      std::string sErro;
      EXPECT_EQ(QVImportaTabela(*destino, t, t.PorEmpresa() ? kExemplo : 0, Exporta(*m_p, t, f), f, nullptr, &sErro),
                S_OK)
          << t.sNome << ": " << sErro;
    }
    EXPECT_EQ(Tudo(*destino), Tudo(*m_p));
  }
}

TEST_F(QVTabelasSuiteTest, AmostraComecaNoPonteiro1EhCriadaUmaVez) {
  const std::pair<const char*, const char*> consultas[] = {
      {"SELECT nome FROM empresas WHERE ponteiro = 1", "EMPRESA_EXEMPLO"},
      {"SELECT login FROM usuarios WHERE ponteiro = 1 AND ativo = 1", "admin"},
      {"SELECT nome FROM filiais WHERE ponteiro = 1 AND ativa = 1 AND ponteiro_empresa = 1", "Matriz São Paulo"},
      {"SELECT COUNT(*) FROM usuarios_empresas WHERE ponteiro_usuario = 1 AND ponteiro_empresa = 1", "1"},
      {"SELECT COUNT(*) FROM filiais_usuarios WHERE ponteiro_usuario = 1 AND ponteiro_filial = 1", "1"},
      {"SELECT codigo FROM clientes WHERE ponteiro = 1 AND ponteiro_empresa = 1", "0001"},
      {"SELECT tipo || classificacao FROM servicos WHERE ponteiro = 1", "T01"},
      {"SELECT group_concat(tipo || classificacao, ' ') FROM (SELECT * FROM servicos ORDER BY ponteiro)",
       "T01 S01.001 S01.002 S01.003 T02 S02.001 S02.002 T03 S03.001 S03.002"},
      {"SELECT group_concat(sigla || casas_decimais, ' ') FROM (SELECT * FROM unidades ORDER BY ponteiro)",
       "H2 UN0 KM1"},
      {"SELECT COUNT(*) FROM usuarios WHERE executor = 1 AND perfil <> ''", "4"},
      {"SELECT uf || codigo_ibge FROM municipios WHERE nome = 'São Paulo'", "SP3550308"},
      {"SELECT COUNT(*) FROM contratos c JOIN clientes k ON k.ponteiro = c.ponteiro_cliente WHERE k.ponteiro_empresa = "
       "1",
       "2"},
      {"SELECT COUNT(*) FROM parametros_ge WHERE ponteiro_empresa = 1", "1"},
      {"SELECT COUNT(*) > 0 FROM notas_fiscais WHERE ponteiro_empresa = 1", "1"},
      {"SELECT COUNT(*) > 0 FROM vinculos WHERE ponteiro_empresa = 1", "1"},
  };
  for (const auto& [sql, esperado] : consultas) EXPECT_EQ(Consulta(*m_p, sql), esperado) << sql;

  const std::string antes = Tudo(*m_p);
  EXPECT_EQ(QVCriaAmostraSuite(*m_p), S_FALSE);
  EXPECT_EQ(Tudo(*m_p), antes);
  // The same company in another case is the same company.
  auto outro = NovoBanco("outro");
  {
    auto trava = outro->Trava();
    ASSERT_EQ(outro->ExecutaSql("INSERT INTO empresas (nome) VALUES ('Empresa_Exemplo')"), S_OK);
  }
  EXPECT_EQ(QVCriaAmostraSuite(*outro), S_FALSE);
  EXPECT_EQ(Consulta(*outro, "SELECT COUNT(*) FROM clientes"), "0");
}

TEST_F(QVTabelasSuiteTest, EmpresaDoComando) {
  const std::tuple<const char*, const char*, HRESULT, std::uint32_t> casos[] = {
      {"clientes", "empresa_exemplo", S_OK, kExemplo},
      {"filiais_usuarios", "Outra", S_OK, kOutra},
      {"clientes", "", E_INVALIDARG, 0},  // two companies: which?
      {"clientes", "NENHUMA", E_QVDF_EMPRESA_NAO_CADASTRADA, 0},
      {"municipios", "", S_OK, 0},
      {"municipios", "OUTRA", E_INVALIDARG, 0},
  };
  for (const auto& [tabela, empresa, hr, lEsperada] : casos) {
    std::uint32_t l = 99;
    std::string sErro;
    EXPECT_EQ(QVEmpresaDaTabela(*m_p, Tabela(tabela), empresa, &l, &sErro), hr) << tabela << " " << empresa;
    EXPECT_EQ(l, lEsperada) << tabela << " " << empresa;
  }
  // With one company there is no need to name it; with none there is none.
  auto um = NovoBanco("um");
  std::uint32_t l = 0;
  std::string sErro;
  EXPECT_EQ(QVEmpresaDaTabela(*um, Tabela("clientes"), "", &l, &sErro), E_QVDF_EMPRESA_NAO_CADASTRADA);
  ASSERT_EQ(QVCriaAmostraSuite(*um), S_OK);
  EXPECT_EQ(QVEmpresaDaTabela(*um, Tabela("clientes"), "", &l, &sErro), S_OK);
  EXPECT_EQ(l, kExemplo);
}

// The listing and the views read one row at a time and join the details.
TEST_F(QVTabelasSuiteTest, ListaEVisoes) {
  {
    auto trava = m_p->Trava();
    const std::string sql =
        "INSERT INTO acompanhamentos (ponteiro, ponteiro_empresa, ma, valor_servicos, observacao) VALUES (1, 1, " +
        std::to_string(QVMesAno(2024, 3)) +
        ", 15000, 'primeira\nlinha'); "
        "INSERT INTO acompanhamento_servicos (ponteiro_acompanhamento, identificador, ponteiro_servico) VALUES (1, 2, "
        "3), (1, 1, 2); "
        "INSERT INTO log_transacoes (ponteiro_empresa, usuario, sessao, data_hora, modulo, tipo, operacao) VALUES "
        "(1, 1, 1, 100, 9, 3, 'I'), (1, 1, 1, 200, 9, 3, 'A'), (2, 1, 1, 300, 9, 3, 'E')";
    ASSERT_EQ(m_p->ExecutaSql(sql.c_str()), S_OK);
  }
  std::string s;
  ASSERT_EQ(QVMostraVisao(*m_p, *QVProcuraVisaoSuite("acompanhamentos"), kExemplo, false, Em(&s)), S_OK);
  for (const char* trecho : {"ponteiro=1  ma=2024-03", "valor_servicos=1,50", "observacao=primeira linha\n",
                             "\n    ponteiro_acompanhamento=1  identificador=1  ponteiro_servico=2"})
    EXPECT_NE(s.find(trecho), std::string::npos) << trecho << "\n" << s;
  s.clear();
  ASSERT_EQ(QVMostraVisao(*m_p, *QVProcuraVisaoSuite("acompanhamentos"), kExemplo, true, Em(&s)), S_OK);
  const auto j = nlohmann::json::parse(s);
  ASSERT_EQ(j.size(), 1u);
  EXPECT_EQ(j[0]["servicos"].size(), 2u);
  EXPECT_EQ(j[0]["servicos"][0]["identificador"], 1);
  EXPECT_EQ(j[0]["valor_servicos"], "1,50");
  s.clear();
  ASSERT_EQ(QVMostraVisao(*m_p, *QVProcuraVisaoSuite("log"), kExemplo, true, Em(&s)), S_OK);
  const auto log = nlohmann::json::parse(s);
  ASSERT_EQ(log.size(), 2u);           // the other company's row is not this one's
  EXPECT_EQ(log[0]["operacao"], "A");  // newest first
  s.clear();
  ASSERT_EQ(QVMostraVisao(*m_p, *QVProcuraVisaoSuite("eventos"), kExemplo, false, Em(&s)), S_OK);
  EXPECT_EQ(s, "(nenhuma linha)\n");

  ASSERT_EQ(Importa("clientes", kExemplo, "nome\n\"Uma razão social muito longa para caber\nnuma coluna\"\n", kCsv),
            S_OK);
  s.clear();
  ASSERT_EQ(QVListaTabela(*m_p, Tabela("clientes"), kExemplo, Em(&s)), S_OK);
  EXPECT_EQ(s.rfind("ponteiro  codigo  nome ", 0), 0u) << s;
  EXPECT_NE(s.find("  Uma razão social muito longa para caber…  "), std::string::npos) << s;
  EXPECT_NE(s.find("\n(6 linhas)\n"), std::string::npos) << s;
}

TEST(QVTabelasSuiteArquivo, FormatoELimiteDoArquivo) {
  const std::pair<const char*, int> nomes[] = {
      {"a.csv", 0}, {"dir/A.JSON", 1}, {"a.csv.txt", -1}, {"x.csv/a", -1}, {"csv", -1}};
  for (const auto& [nome, formato] : nomes) {
    EQVFormatoTabela f{};
    EXPECT_EQ(QVFormatoDoArquivo(nome, &f) ? static_cast<int>(f) : -1, formato) << nome;
  }
  const std::string dir = QVTesteNovoDiretorio("arquivos");
  std::ofstream(dir + "/grande.csv") << "nome\n";
  std::filesystem::resize_file(dir + "/grande.csv", kQVTamanhoMaximoImportacao + 1);
  std::string s, sErro;
  EXPECT_EQ(QVLeArquivoImportacao(dir + "/grande.csv", &s, &sErro), HRESULT_FROM_WIN32(ERROR_INVALID_DATA));
  EXPECT_TRUE(s.empty());
  EXPECT_NE(sErro.find("no máximo 64 MiB"), std::string::npos) << sErro;
  EXPECT_EQ(QVLeArquivoImportacao(dir + "/nada.csv", &s, &sErro), HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
  std::filesystem::resize_file(dir + "/grande.csv", 5);
  EXPECT_EQ(QVLeArquivoImportacao(dir + "/grande.csv", &s, &sErro), S_OK);
  EXPECT_EQ(s, "nome\n");
}
