// Calls by class and method name, in this process, with the methods that
// answer today: the object's own (keep-alive, last error, initialisation,
// generic function) and a business method before and after initialising.
#include <gtest/gtest.h>

#include "core/QVRPCDLL/QVFrame.h"
#include "df/qvlibex/QVCodigos.h"
#include "ge/zelkorin/ZelkorinClasses.h"
#include "ge/zelkorin/json/ZelkorinJsonChamadas.h"
#include "tests/support/QVTestSupport.h"

namespace {

struct CObjeto {
  explicit CObjeto(const QVClasseJson& classe) : m_Classe(classe) {
    EXPECT_EQ(QVRegistraClassesZelkorin(), S_OK);
    EXPECT_EQ(CoCreateInstance(classe.clsid, nullptr, CLSCTX_ALL, classe.iid, &m_p), S_OK);
  }
  ~CObjeto() {
    if (m_p != nullptr) m_Classe.comoUnknown(m_p)->Release();
  }
  // Prepares and runs one call: its status, and its out values in *pSaida.
  HRESULT Chama(std::string_view metodo, const QVJson& entrada, QVJson* pSaida = nullptr) {
    std::unique_ptr<IQVChamadaJson> chamada;
    QVErroJson erro;
    const HRESULT hr = QVPreparaChamadaJson(m_Classe, metodo, entrada, m_Inicializacao, "c", &chamada, &erro);
    EXPECT_EQ(hr, S_OK) << erro.Texto();
    if (FAILED(hr)) return hr;
    const HRESULT hrChamada = chamada->Executa(m_p);
    if (pSaida != nullptr) *pSaida = chamada->Saida();
    return hrChamada;
  }
  const QVClasseJson& m_Classe;
  void* m_p = nullptr;
  _REG_DF_INICIALIZAPS m_Inicializacao = QVTesteInicializaPS();
};

}  // namespace

TEST(ZelkorinJsonChamadas, MetodosDoObjetoPorNome) {
  CObjeto projeto(*QVProcuraClasseJson("QVGE_Projeto"));
  QVJson saida;
  EXPECT_EQ(projeto.Chama("KeepAlive", nullptr, &saida), S_OK);
  EXPECT_EQ(saida, QVJson::parse(R"({"pbOK": true})"));
  EXPECT_EQ(projeto.Chama("LeRegistro", {{"lPtr", 1}}), E_QVCR_SERVIDOR_NAO_INICIALIZADO);

  // The initialisation record starts as the session's: the fields given
  // replace its own, and the CRC follows them unless given too.
  EXPECT_EQ(projeto.Chama("Inicializa_Padrao", {{"regps", {{"usVersaoVireo", 117}}}}), E_QVCR_VERSAO_INCOMPATIVEL);
  EXPECT_EQ(projeto.Chama("Inicializa_Padrao", {{"regps", {{"uiCRC", 1}}}}), E_QVCR_CRC_INICIALIZACAO_INVALIDO);
  EXPECT_EQ(projeto.Chama("Inicializa_Padrao", {{"regps", {{"cControle", "A"}}}}),
            E_QVCR_ESTRUTURA_INICIALIZACAO_INVALIDA);
  EXPECT_EQ(projeto.Chama("Inicializa_Padrao", nullptr), S_OK);

  EXPECT_EQ(projeto.Chama("LeRegistro", {{"lPtr", 1}}, &saida), E_NOTIMPL);
  EXPECT_EQ(saida["regps"]["rNome"], "");  // an unfilled out record prints as zero
  EXPECT_EQ(projeto.Chama("GetUltimoErro", nullptr, &saida), S_OK);
  EXPECT_EQ(saida["pregErrops"]["hr"], "0x80004001");

  // An allocated out record prints as an object; its text as text.
  EXPECT_EQ(projeto.Chama("FuncaoGenerica",
                          {{"ulFuncao", QV_FUNCAO_GENERICA_ESTATISTICAS_USO},
                           {"regInps", {{"pListaBytes", R"({"empresa": "EMPRESA_TESTE"})"}}}},
                          &saida),
            S_OK);
  const QVJson estatisticas = QVJson::parse(saida["ppregOutps"]["pListaBytes"].get<std::string>());
  EXPECT_EQ(estatisticas["objeto"]["EMPRESA_TESTE"].begin().value()["CQVGE_Projeto"]["LeRegistro"]["9"]["chamadas"], 1);
  EXPECT_EQ(projeto.Chama("FuncaoGenerica", {{"ulFuncao", 1}}, &saida), E_NOTIMPL);
  EXPECT_TRUE(saida["ppregOutps"].is_null());
}

TEST(ZelkorinJsonChamadas, ChamadaRuimNaoSePrepara) {
  const QVClasseJson& atendimento = *QVProcuraClasseJson("QVGE_Atendimento");
  EXPECT_EQ(QVProcuraClasseJson("qvge_atendimento"), nullptr);
  const struct {
    const char* metodo;
    const char* entrada;
    const char* erro;
  } casos[] = {
      {"LeProjeto", "null",
       "c.metodo: método desconhecido de IQVGE_Atendimento: \"LeProjeto\" (métodos: "
       "Inicializa_Padrao, KeepAlive, GetUltimoErro, FuncaoGenerica, BuscaPonteiros,"},
      {"KeepAlive", R"({"pbOK": true})", "c.entrada.pbOK: parâmetro de saída de KeepAlive: vem na resposta"},
      {"LeAtendimento", R"({"iMa": 1})",
       "c.entrada.iMa: parâmetro desconhecido de LeAtendimento (parâmetros: iMA, "
       "lPosicao, RegAtendimento)"},
      {"LeAtendimento", "[1, 2]", "c.entrada: esperado um objeto com os parâmetros de entrada de LeAtendimento"},
      {"LeAtendimento", R"({"iMA": "2026-13"})", "c.entrada.iMA: mês inválido: o texto \"2026-13\""},
      {"GravaAtendimento", R"({"RegAtendimentoPs": {"pServicos": [{"bsFiller": ""}]}})",
       "c.entrada.RegAtendimentoPs.pServicos[0].bsFiller: campo reservado"},
      {"GeraRelatorioAgrupamento", R"({"cTipoAgrupamento": -1})",
       "c.entrada.cTipoAgrupamento: o valor -1 não cabe em u8"},
      {"GeraRelatorioConsultaAgendamento",
       R"({"regRelConsultaAgendamento": {"regLista": {"pAgendamentos": [{"iData": "hoje"}]}}})",
       "c.entrada.regRelConsultaAgendamento.regLista.pAgendamentos[0].iData: data inválida: o texto \"hoje\""},
  };
  for (const auto& c : casos) {
    SCOPED_TRACE(c.metodo);
    std::unique_ptr<IQVChamadaJson> chamada;
    QVErroJson erro;
    EXPECT_EQ(QVPreparaChamadaJson(atendimento, c.metodo, QVJson::parse(c.entrada), QVTesteInicializaPS(), "c",
                                   &chamada, &erro),
              E_INVALIDARG);
    EXPECT_EQ(chamada, nullptr);
    EXPECT_EQ(erro.Texto().substr(0, std::strlen(c.erro)), c.erro) << erro.Texto();
  }
}
