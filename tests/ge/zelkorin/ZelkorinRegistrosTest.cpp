// Ownership of the service-call and project records: deep copy, deep compare
// and deep free driven by the descriptor tables, and the interface identity.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string_view>

#include "df/qvlibex/QVRegistrosDF.h"
#include "ge/zelkorin/ZelkorinInterfaces.h"
#include "ge/zelkorin/ZelkorinRegistros.h"
#include "platform/QVBstr.h"
#include "platform/QVTaskMem.h"
#include "tests/support/QVTesteRegistros.h"

namespace {

void EsperaVazio(const _REG_ATENDIMENTO_PS& a) {
  EXPECT_EQ(a.pServicos, nullptr);
  EXPECT_EQ(a.iQuantidadeServicoAtend, 0u);
  EXPECT_EQ(a.pDespesas, nullptr);
  EXPECT_EQ(a.iQuantidadeDespesa, 0u);
  EXPECT_EQ(a.pRepresentante, nullptr);
  EXPECT_EQ(a.lQtdRepresentante, 0u);
  EXPECT_EQ(a.pClassificacoes, nullptr);
  EXPECT_EQ(a.lQuantidadeClassificacao, 0u);
  EXPECT_EQ(a.bsComentario, nullptr);
  EXPECT_EQ(a.bsComentarioAgendamento, nullptr);
  EXPECT_EQ(a.bsDescricaoSomarItensNF, nullptr);
  EXPECT_EQ(a.regListaEventosGoogle.pListaEventos, nullptr);
  EXPECT_EQ(a.regListaEventosGoogle.lQuantidadeEventos, 0u);
  EXPECT_EQ(a.regListaPonteirosIntegACM.pLista, nullptr);
  EXPECT_EQ(a.regListaPonteirosIntegACM.ulQuantidade, 0u);
  EXPECT_EQ(a.regRetencoesSomarItensNF.pRegDeducoesBCINSS, nullptr);
  EXPECT_EQ(a.regRetencoesSomarItensNF.iQtdDeducaoBCINSS, 0u);
  EXPECT_EQ(a.regEFDREINFPsSomarItensNF.pRegProcessosRetAjuiz, nullptr);
  EXPECT_EQ(a.regEFDREINFPsSomarItensNF.iQuantidadeProcessosRetAdic, 0u);
}

TEST(ZelkorinRegistros, AtendimentoCompletoCopiaSemPartilharECompara) {
  auto a = AtendimentoCompleto();
  _REG_ATENDIMENTO_PS b;
  ASSERT_EQ(QVCopia(a, &b), S_OK);
  EXPECT_TRUE(QVIguais(a, b));
  EXPECT_EQ(b.lNumeroAtendimento, 4711u);
  EXPECT_EQ(QVBstrToUtf8(b.bsComentarioAgendamento), "Levar peças");
  EXPECT_EQ(QVBstrToUtf8(b.pDespesas[0].bsComentario), "Pedágio");
  EXPECT_EQ(QVTextoPsLe(b.regListaEventosGoogle.pListaEventos[1].rIDEvento), "evt-0002");
  EXPECT_EQ(b.pServicos[1].pSessoes[2].iHoraFinal, 1050);

  // Nothing of the source is shared, at any depth.
  EXPECT_NE(b.pServicos, a.pServicos);
  EXPECT_NE(b.pServicos[0].pSessoes, a.pServicos[0].pSessoes);
  EXPECT_NE(b.pServicos[1].bsResultado, a.pServicos[1].bsResultado);
  EXPECT_NE(b.pServicos[1].pClassificacoes[1].pGerenciais, a.pServicos[1].pClassificacoes[1].pGerenciais);
  EXPECT_NE(b.pServicos[0].regRetencoes.pRegDeducoesBCINSS, a.pServicos[0].regRetencoes.pRegDeducoesBCINSS);
  EXPECT_NE(b.pServicos[0].regEFD_REINF.pRegProcessosRetAdic, a.pServicos[0].regEFD_REINF.pRegProcessosRetAdic);
  EXPECT_NE(b.pDespesas[0].pClassificacoes, a.pDespesas[0].pClassificacoes);
  EXPECT_NE(b.regListaEventosGoogle.pListaEventos[0].rIDAgenda.pTexto,
            a.regListaEventosGoogle.pListaEventos[0].rIDAgenda.pTexto);
  EXPECT_NE(b.regListaPonteirosIntegACM.pLista, a.regListaPonteirosIntegACM.pLista);
  EXPECT_NE(b.regEFDREINFPsSomarItensNF.pRegProcessosRetAjuiz, a.regEFDREINFPsSomarItensNF.pRegProcessosRetAjuiz);
  EXPECT_NE(b.pRepresentante, a.pRepresentante);

  QVLibera(&a);
  QVLibera(&b);
  EsperaVazio(a);
  EsperaVazio(b);
  EXPECT_EQ(b.lNumeroAtendimento, 4711u);  // fixed bytes stay
}

TEST(ZelkorinRegistros, AtendimentoDiferencaDeUmByteNoFundo) {
  using Mudanca = void (*)(_REG_ATENDIMENTO_PS&);
  const Mudanca mudancas[] = {
      [](_REG_ATENDIMENTO_PS& r) { r.pServicos[1].pSessoes[2].iHoraFinal++; },
      [](_REG_ATENDIMENTO_PS& r) { r.pServicos[0].iQuantidadeSessao--; },
      [](_REG_ATENDIMENTO_PS& r) { r.pServicos[1].pClassificacoes[1].pGerenciais[1].lPonteiroContaGerencial++; },
      [](_REG_ATENDIMENTO_PS& r) { r.pServicos[0].bsResultado[0] = u'r'; },
      [](_REG_ATENDIMENTO_PS& r) { r.pServicos[1].regRetencoes.pRegDeducoesBCINSS[1].cDescricao[0] = 'e'; },
      [](_REG_ATENDIMENTO_PS& r) { r.pServicos[1].regEFD_REINF.pRegProcessosRetAdic[1].vValor++; },
      [](_REG_ATENDIMENTO_PS& r) { r.pDespesas[0].pClassificacoes[0].pGerenciais[0].vValor++; },
      [](_REG_ATENDIMENTO_PS& r) { r.pDespesas[0].bsDescricao[0] = u'd'; },
      [](_REG_ATENDIMENTO_PS& r) { r.regListaEventosGoogle.pListaEventos[1].rIDAgenda.pTexto[3] ^= 1; },
      [](_REG_ATENDIMENTO_PS& r) { r.regListaPonteirosIntegACM.pLista[1]++; },
      [](_REG_ATENDIMENTO_PS& r) { r.regRetencoesSomarItensNF.pRegDeducoesBCINSS[0].cTipo = 1; },
      [](_REG_ATENDIMENTO_PS& r) { r.regEFDREINFPsSomarItensNF.pRegProcessosRetAjuiz[0].lPonteiroSuspensao++; },
      [](_REG_ATENDIMENTO_PS& r) { r.pRepresentante[2]++; },
      [](_REG_ATENDIMENTO_PS& r) { r.pClassificacoes[0].pGerenciais[1].lPonteiroContaContabil++; },
      [](_REG_ATENDIMENTO_PS& r) { r.bsComentario[0] = u'c'; },
  };
  auto a = AtendimentoCompleto();
  for (std::size_t i = 0; i < std::size(mudancas); ++i) {
    _REG_ATENDIMENTO_PS b;
    ASSERT_EQ(QVCopia(a, &b), S_OK);
    mudancas[i](b);
    EXPECT_FALSE(QVIguais(a, b)) << "change " << i;
    EXPECT_FALSE(QVIguais(b, a)) << "change " << i;
    QVLibera(&b);
  }
  QVLibera(&a);
}

TEST(ZelkorinRegistros, PonteiroNuloComContagemCopiaComoVazio) {
  auto a = AtendimentoCompleto();
  CoTaskMemFree(a.pRepresentante);
  a.pRepresentante = nullptr;  // lQtdRepresentante stays 3
  CoTaskMemFree(a.pServicos[0].pSessoes);
  a.pServicos[0].pSessoes = nullptr;  // iQuantidadeSessao stays 3
  SysFreeString(a.bsComentario);
  a.bsComentario = nullptr;

  _REG_ATENDIMENTO_PS b;
  ASSERT_EQ(QVCopia(a, &b), S_OK);
  EXPECT_EQ(b.pRepresentante, nullptr);
  EXPECT_EQ(b.lQtdRepresentante, 0u);
  EXPECT_EQ(b.pServicos[0].pSessoes, nullptr);
  EXPECT_EQ(b.pServicos[0].iQuantidadeSessao, 0u);
  EXPECT_EQ(b.pServicos[1].iQuantidadeSessao, 3u);
  EXPECT_EQ(b.bsComentario, nullptr);
  QVLibera(&a);
  QVLibera(&b);
}

// Copies a record deeply, checks that the copy equals it and that a change
// of one owned byte (made by muda) tells them apart, then frees both. A
// field missing from a descriptor shows as a leak, a shared one as a double
// free, in the sanitizer build.
template <class T, class F>
void ConfereCopia(T original, F muda) {
  T copia;
  ASSERT_EQ(QVCopia(original, &copia), S_OK);
  EXPECT_TRUE(QVIguais(original, copia));
  muda(copia);
  EXPECT_FALSE(QVIguais(original, copia));
  QVLibera(&original);
  QVLibera(&copia);
}

TEST(ZelkorinRegistros, CadaFamiliaCopiaEmProfundidadeOQueTem) {
  auto lista = Zerado<_REG_LISTA_REGISTROS_PS>();
  lista.iQuantidadeRegistros = 2;
  lista.pRegistros = Novo<_REG_ATENDIMENTO_PS>(2);
  lista.pRegistros[0] = AtendimentoCompleto();
  lista.pRegistros[1] = AtendimentoCompleto();
  ConfereCopia(lista, [](auto& c) { c.pRegistros[1].regListaEventosGoogle.pListaEventos[0].rIDEvento.pTexto[0]++; });

  // The 20 info-plus values each own their text; the month and position lists.
  ConfereCopia(FiltroComListas(), [](auto& c) { c.ieInfoPlus[19].pcTexto[0]++; });
  ConfereCopia(FiltroComListas(), [](auto& c) { c.arrMA[2]++; });
  auto rel = Zerado<_REG_RELATORIO_ATENDIMENTO_PS>();
  rel.RegFiltroPs = FiltroComListas();
  ConfereCopia(rel, [](auto& c) { c.RegFiltroPs.arrlPos[1]++; });

  auto horas = Zerado<_REG_FILTRO_REL_CONTROLE_HORAS>();
  horas.bsRazaoSocial = QVBstrFromUtf8("Empresa Ltda");
  horas.bsComponente = QVBstrFromUtf8("GE");
  horas.bsArqTemp = QVBstrFromUtf8("/tmp/horas.tmp");
  horas.bsRelatorio = QVBstrFromUtf8("Controle de horas");
  horas.bsProjeto = QVBstrFromUtf8("Implantação");
  ConfereCopia(horas, [](auto& c) { c.bsProjeto[0] = u'i'; });

  auto agenda = Zerado<_REG_REL_CONSULTA_AGENDAMENTO>();
  agenda.bsArqTemp = QVBstrFromUtf8("/tmp/agenda.tmp");
  agenda.regLista.lQuantidade = 2;
  agenda.regLista.pAgendamentos = Novo<_REG_AGENDAMENTO_REL>(2);
  for (auto* ag = agenda.regLista.pAgendamentos; ag != agenda.regLista.pAgendamentos + 2; ++ag) {
    ag->bsExecutor = QVBstrFromUtf8("João");
    ag->bsHoraInicial = QVBstrFromUtf8("08:00");
    ag->bsHoraFinal = QVBstrFromUtf8("09:30");
    ag->bsCliente = QVBstrFromUtf8("Padaria Estrela");
  }
  ConfereCopia(agenda, [](auto& c) { c.regLista.pAgendamentos[1].bsCliente[0] = u'p'; });

  auto projetos = Zerado<_REG_LISTA_PROJETOS_PS>();
  projetos.iQuantidadeRegistros = 2;
  projetos.pRegistros = Novo<_REG_PROJETO_ATENDIMENTO_PS>(2);
  Texto(projetos.pRegistros[0].rCodigo, "P-01");
  Texto(projetos.pRegistros[0].rNome, "Implantação");
  Texto(projetos.pRegistros[1].rNome, "Suporte");  // no code: empty text
  ConfereCopia(projetos, [](auto& c) { c.pRegistros[0].rCodigo.pTexto[3]++; });

  auto filtroProjeto = Zerado<_REG_FILTRO_PROJETO_PS>();
  Texto(filtroProjeto.rNome, "Impl");
  Texto(filtroProjeto.rCodigo, "P-01");
  ConfereCopia(filtroProjeto, [](auto& c) { c.rNome.pTexto[0]++; });

  auto props = Zerado<_REG_PROPRIEDADES_ATENDIMENTO_PS>();
  Texto(props.rNomeCliente2, "Solicitante");
  ConfereCopia(props, [](auto& c) { c.rNomeCliente2.pTexto[0]++; });
}

}  // namespace

// Every description agrees with its own record: a wrong count width, a
// field outside the record or an element descriptor of another size would
// make the deep copy and the marshaller read or write the wrong bytes.
TEST(ZelkorinRegistros, DescritoresConsistentes) {
  const QVDescritorRegistro* todos[] = {
      &QVDescritor<_REG_DF_TEXTOPS>(), &QVDescritor<_REG_DF_FUNCAO_GENERICAPS>(),
      &QVDescritor<_REG_DF_INICIALIZAPS>(), &QVDescritor<_REG_DF_ERROPS>(), &QVDescritor<_REG_DF_LISTA_QVDMCPS>(),
      &QVDescritor<IE_CAMPO_DATA_PS>(), &QVDescritor<_REG_FILTRO_ATENDIMENTO_PS>(),
      &QVDescritor<_REG_LISTA_PONTEIROS_PS>(), &QVDescritor<_REG_CLIENTES_ATENDIMENTO_PS>(),
      &QVDescritor<_REG_LISTA_REGISTROS_PS>(), &QVDescritor<_REG_FILTRO_AGENDA_PS>(),
      &QVDescritor<_REG_LISTA_PONTEIROS_AGENDA>(), &QVDescritor<_REG_LISTA_SERVICOS_AGENDA_PS>(),
      &QVDescritor<_REG_GE_EVENTO_GOOGLEPS>(), &QVDescritor<_REG_GE_LISTA_EVENTO_GOOGLEPS>(),
      &QVDescritor<_REG_RETENCOES_PS>(), &QVDescritor<tagREG_EFD_REINF_ITENS_NFPS>(),
      &QVDescritor<_REG_CLASSIFICACAO_GE_PS>(), &QVDescritor<_REG_SERVICO_ATENDIMENTO_PS>(),
      &QVDescritor<_REG_DESPESA_ATENDIMENTO_PS>(), &QVDescritor<_REG_ATENDIMENTO_PS>(),
      &QVDescritor<_REG_PROPRIEDADES_ATENDIMENTO_PS>(), &QVDescritor<_REG_RELATORIO_ATENDIMENTO_PS>(),
      &QVDescritor<_REG_FILTRO_REL_CONTROLE_HORAS>(), &QVDescritor<_REG_AGENDAMENTO_REL>(),
      &QVDescritor<_REG_LISTA_AGENDAMENTO_REL>(), &QVDescritor<_REG_REL_CONSULTA_AGENDAMENTO>(),
      &QVDescritor<_REG_FILTRO_PROJETO_PS>(), &QVDescritor<_REG_PTR_PROJETO_PS>(),
      &QVDescritor<_REG_PROJETO_ATENDIMENTO_PS>(), &QVDescritor<_REG_LISTA_PROJETOS_PS>()};
  for (const QVDescritorRegistro* d : todos) {
    std::string erro;
    EXPECT_TRUE(QVDescritorConsistente(*d, &erro)) << erro;
  }
  // And the check itself sees a wrong element size.
  const QVCampoPonteiro errado[] = {QVCampoPonteiro{"pLista", 16, EQVCampoPonteiro::Registros, 0, 4, 8,
                                                    &QVDescritor<_REG_DF_TEXTOPS>()}};
  const QVDescritorRegistro lista{"_REG_ERRADO", 24, errado};
  std::string erro;
  EXPECT_FALSE(QVDescritorConsistente(lista, &erro));
  EXPECT_EQ(erro, "_REG_ERRADO.pLista: tamanho do elemento difere do descritor");
}
