#include "tests/support/QVTesteRegistros.h"

#include "platform/QVBstr.h"

namespace {

_REG_CLASSIFICACAO_GE_PS* NovasClassificacoes(std::uint32_t n, std::uint32_t semente) {
  auto* c = Novo<_REG_CLASSIFICACAO_GE_PS>(n);
  for (std::uint32_t i = 0; i < n; ++i) {
    c[i].vValor = 10000 * (semente + i);
    c[i].lCodigo = semente + i;
    c[i].lQuantidadeGerencial = 2;
    c[i].pGerenciais = Novo<_REG_GERENCIAL_GE_PS>(2);
    for (std::uint32_t g = 0; g < 2; ++g) {
      c[i].pGerenciais[g].vValor = 5000 * (g + 1);
      c[i].pGerenciais[g].lPonteiroContaGerencial = 100 * semente + 10 * i + g;
      c[i].pGerenciais[g].lPonteiroContaContabil = 200 + g;
    }
  }
  return c;
}

void MontaRetencoes(_REG_RETENCOES_PS& r, std::uint16_t semente) {
  r.iAliqIRRF = 150;
  r.iAliqINSS = static_cast<std::uint16_t>(1100 + semente);
  r.iQtdDeducaoBCINSS = 2;
  r.pRegDeducoesBCINSS = Novo<_REG_DEDUCOES_BC_INSS_PS>(2);
  QVCopiaCampoTexto(r.pRegDeducoesBCINSS[0].cDescricao, "Materiais");
  QVCopiaCampoTexto(r.pRegDeducoesBCINSS[1].cDescricao, "Equipamentos");
  r.pRegDeducoesBCINSS[1].vValorDeducao = 123400;
}

void MontaEfdReinf(tagREG_EFD_REINF_ITENS_NFPS& e, std::uint32_t semente) {
  e.vValorRetencoesAjuizada = 77;
  e.iQuantidadeProcessosRetAjuiz = 1;
  e.pRegProcessosRetAjuiz = Novo<tagREG_EFD_PROCESSO_JURIDICO_NFPS>(1);
  e.pRegProcessosRetAjuiz[0] = {9000, semente, 1};
  e.iQuantidadeProcessosRetAdic = 2;
  e.pRegProcessosRetAdic = Novo<tagREG_EFD_PROCESSO_JURIDICO_NFPS>(2);
  e.pRegProcessosRetAdic[0] = {100, semente + 1, 2};
  e.pRegProcessosRetAdic[1] = {200, semente + 2, 3};
}

void MontaServico(_REG_SERVICO_ATENDIMENTO_PS& s, std::uint16_t semente) {
  QVCopiaCampoTexto(s.cChave, "SRV");
  s.lCodigo = semente;
  s.bsComentario = QVBstrFromUtf8("Comentário do serviço");
  s.bsResultado = QVBstrFromUtf8("Resolvido");
  s.bsDescricao = QVBstrFromUtf8("Manutenção preventiva");
  MontaRetencoes(s.regRetencoes, semente);
  MontaEfdReinf(s.regEFD_REINF, semente);
  s.iQuantidadeClassificacao = 2;
  s.pClassificacoes = NovasClassificacoes(2, semente);
  s.iQuantidadeSessao = 3;
  s.pSessoes = Novo<_REG_SESSAO_ATENDIMENTO_PS>(3);
  for (std::uint16_t i = 0; i < 3; ++i) s.pSessoes[i] = {static_cast<std::uint16_t>(800 + 100 * i),
                                                         static_cast<std::uint16_t>(850 + 100 * i), {0, 0}};
}

// A call with every owned part present.
}  // namespace

_REG_ATENDIMENTO_PS AtendimentoCompleto() {
  auto a = Zerado<_REG_ATENDIMENTO_PS>();
  QVCopiaCampoTexto(a.szEmailExecutor, "tecnico@exemplo.com.br");
  a.lNumeroAtendimento = 4711;
  a.i64NumeroNF = 990001;
  a.bsComentario = QVBstrFromUtf8("Cliente pediu retorno");
  a.bsComentarioAgendamento = QVBstrFromUtf8("Levar peças");
  a.bsDescricaoSomarItensNF = QVBstrFromUtf8("Serviços do mês");

  a.iQuantidadeServicoAtend = 2;
  a.pServicos = Novo<_REG_SERVICO_ATENDIMENTO_PS>(2);
  MontaServico(a.pServicos[0], 1);
  MontaServico(a.pServicos[1], 2);

  a.iQuantidadeDespesa = 1;
  a.pDespesas = Novo<_REG_DESPESA_ATENDIMENTO_PS>(1);
  a.pDespesas[0].lKmFinal = 321;
  a.pDespesas[0].RegPisCofinsPs.lCstPis = 1;
  a.pDespesas[0].bsComentario = QVBstrFromUtf8("Pedágio");
  a.pDespesas[0].bsDescricao = QVBstrFromUtf8("Deslocamento");
  a.pDespesas[0].iQuantidadeClassificacao = 1;
  a.pDespesas[0].pClassificacoes = NovasClassificacoes(1, 7);

  a.lQtdRepresentante = 3;
  a.pRepresentante = Novo<std::uint32_t>(3);
  for (std::uint32_t i = 0; i < 3; ++i) a.pRepresentante[i] = 50 + i;
  a.lQuantidadeClassificacao = 1;
  a.pClassificacoes = NovasClassificacoes(1, 9);

  a.regListaEventosGoogle.lQuantidadeEventos = 2;
  a.regListaEventosGoogle.pListaEventos = Novo<_REG_GE_EVENTO_GOOGLEPS>(2);
  for (std::uint16_t i = 0; i < 2; ++i) {
    auto& ev = a.regListaEventosGoogle.pListaEventos[i];
    ev.usUsuarioEvento = static_cast<std::uint16_t>(i + 1);
    Texto(ev.rIDEvento, i == 0 ? "evt-0001" : "evt-0002");
    Texto(ev.rIDAgenda, "agenda@exemplo");
  }
  a.regListaPonteirosIntegACM.ulQuantidade = 2;
  a.regListaPonteirosIntegACM.pLista = Novo<std::uint64_t>(2);
  a.regListaPonteirosIntegACM.pLista[0] = 0x0001000200000003ull;
  a.regListaPonteirosIntegACM.pLista[1] = 0x0001000200000009ull;
  MontaRetencoes(a.regRetencoesSomarItensNF, 5);
  a.RegPisCofinsPsSomarItensNF.vAliqDiferenPis = 16500;
  MontaEfdReinf(a.regEFDREINFPsSomarItensNF, 30);
  return a;
}


namespace {

void InfoPlusTexto(IE_CAMPO_DATA_PS& c, IE_E_CAMPO id, std::string_view s) {
  c.id = static_cast<std::int32_t>(id);
  c.ulTamanhoTexto = static_cast<std::uint32_t>(s.size() + 1);
  c.pcTexto = Novo<std::uint8_t>(s.size() + 1);
  std::memcpy(c.pcTexto, s.data(), s.size());
}

}  // namespace

_REG_FILTRO_ATENDIMENTO_PS FiltroComListas() {
  auto f = Zerado<_REG_FILTRO_ATENDIMENTO_PS>();
  QVCopiaCampoTexto(f.cDescricaoServico, "manutenção");
  f.iQtdeMA = 3;
  f.arrMA = Novo<std::uint16_t>(3);
  f.arrMA[0] = 301;
  f.arrMA[1] = 302;
  f.arrMA[2] = 303;
  f.iQtdePos = 2;
  f.arrlPos = Novo<std::uint32_t>(2);
  f.arrlPos[0] = 11;
  f.arrlPos[1] = 12;
  // The first and the last of the 20 slots carry texts; the others are empty.
  InfoPlusTexto(f.ieInfoPlus[0], IE_CAMPO_LIVRE_TEXTO_0, "Região Sul");
  InfoPlusTexto(f.ieInfoPlus[19], static_cast<IE_E_CAMPO>(IE_CAMPO_LIVRE_TEXTO_0 + 3), "Contrato 7");
  f.ieInfoPlus[5].id = static_cast<std::int32_t>(IE_CAMPO_LIVRE_V2_0);
  f.ieInfoPlus[5].BinaryData[0] = 42;
  return f;
}

namespace {

std::uint32_t Proximo(std::uint32_t& estado) {
  estado = estado * 1664525u + 1013904223u;
  return estado >> 8;
}

void Amostra(const QVDescritorRegistro& d, unsigned char* r, std::uint32_t& estado, int nivel, bool preenche) {
  if (preenche)
    for (std::uint32_t i = 0; i < d.tamanho; ++i) r[i] = static_cast<unsigned char>(Proximo(estado));
  for (const QVCampoPonteiro& c : d.campos) {
    void* p = nullptr;
    std::uint32_t n = 1 + Proximo(estado) % 3;
    switch (c.tipo) {
      case EQVCampoPonteiro::Bstr:
        p = QVBstrFromUtf8("ação " + std::to_string(Proximo(estado) % 1000));
        break;
      case EQVCampoPonteiro::Array: {
        if (c.tamElemento == 1) n = 2 + Proximo(estado) % 7;  // byte arrays and texts: a few bytes
        auto* a = static_cast<unsigned char*>(CoTaskMemAlloc(n * c.tamElemento));
        for (std::uint32_t i = 0; i < n * c.tamElemento; ++i) a[i] = static_cast<unsigned char>('a' + Proximo(estado) % 26);
        if (c.bTexto) a[n - 1] = 0;
        p = a;
        break;
      }
      case EQVCampoPonteiro::Registros: {
        if (nivel >= 2) n = 0;
        auto* a = n == 0 ? nullptr : static_cast<unsigned char*>(CoTaskMemAlloc(n * c.elemento->tamanho));
        for (std::uint32_t i = 0; i < n; ++i) Amostra(*c.elemento, a + i * c.elemento->tamanho, estado, nivel + 1, true);
        p = a;
        break;
      }
      case EQVCampoPonteiro::Aninhado:
        // Its bytes came with the record's; what it owns is made here.
        Amostra(*c.elemento, r + c.offset, estado, nivel, false);
        continue;
    }
    std::memcpy(r + c.offset, &p, sizeof p);
    if (c.tipo == EQVCampoPonteiro::Array || c.tipo == EQVCampoPonteiro::Registros) {
      if (p == nullptr) n = 0;
      if (c.largContagem == 2) {
        const auto n16 = static_cast<std::uint16_t>(n);
        std::memcpy(r + c.offContagem, &n16, 2);
      } else {
        std::memcpy(r + c.offContagem, &n, 4);
      }
    }
  }
}

}  // namespace

void QVTesteAmostra(const QVDescritorRegistro& d, void* registro, std::uint32_t semente) {
  std::uint32_t estado = semente;
  Amostra(d, static_cast<unsigned char*>(registro), estado, 0, true);
}
