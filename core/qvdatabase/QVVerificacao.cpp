#include "core/qvdatabase/QVVerificacao.h"

#include "core/qvdatabase/CQVDataBase.h"
#include "core/qvdatabase/QVFileBase.h"
#include "df/qvlibex/QVCodigos.h"

namespace {

// A data file seen only through read-only opens.
class CArquivoVerificado final : public CQVFileBase {
 public:
  using CQVFileBase::CQVFileBase;
  ~CArquivoVerificado() override { QV_LOGA(Finaliza()); }

  HRESULT Verifica(EQVTipoConteudo eTipo, std::size_t tamRegistro, QVResultadoVerificacao* r) {
    QV_CHECK_ARQ(AbreArquivo(EQVDataBase_ModoAbertura::eModoLeitura));
    if (!ArquivoAberto()) QV_RETURN_ARQ(E_QVCR_ARQUIVO_NAO_EXISTE);
    r->bPossuiCabecalho = PossuiCabecalho();
    // Checked whatever the machine switch says: a header that is there must be right.
    if (r->bPossuiCabecalho) QV_CHECK_ARQ(ValidaCabecalho());
    QV_CHECK_ARQ(TamanhoDados(&r->uiTamanhoDados));
    if (r->bPossuiCabecalho) {
      QVUInt uiTamanhoArquivo = 0;
      QV_CHECK_ARQ(TamanhoDadosSemLimite(&uiTamanhoArquivo));
      r->uiBytesEscritaInacabada = uiTamanhoArquivo - r->uiTamanhoDados;
    }
    switch (eTipo) {
      case EQVTipoConteudo::Desconhecido:
        break;
      case EQVTipoConteudo::Registros:
        if (tamRegistro == 0 || r->uiTamanhoDados % tamRegistro != 0)
          QV_RETURN_ARQ(E_QVCR_ARQUIVO_NAO_EH_MOD_ESTRUTURA, {"sizeof(T)", std::to_string(tamRegistro)});
        r->uiQuantidade = r->uiTamanhoDados / tamRegistro;
        break;
      case EQVTipoConteudo::RegistroUnico:
        if (r->uiTamanhoDados != tamRegistro) QV_RETURN_ARQ(E_QVCR_ARQUIVO_SINGLE_REG_NAO_TEM_TAMANHO_ESTRUTURA);
        r->uiQuantidade = 1;
        break;
      case EQVTipoConteudo::Texto:
        QV_CHECK_ARQ(ContaTextos(r));
        break;
    }
    return S_OK;
  }

 private:
  HRESULT ContaTextos(QVResultadoVerificacao* r) {
    std::uint64_t o = 0;
    while (o < r->uiTamanhoDados) {
      unsigned char n[4];
      if (r->uiTamanhoDados - o < 4) QV_RETURN_ARQ(E_QVCR_ARQUIVO_TEXTO_QUANTIDADE_CARACTERES_INVALIDA);
      QV_CHECK_ARQ(LeDados(o, n, 4));
      const std::uint64_t tam = n[0] | (n[1] << 8) | (n[2] << 16) | (std::uint64_t{n[3]} << 24);
      if (r->uiTamanhoDados - o - 4 < tam) QV_RETURN_ARQ(E_QVCR_ARQUIVO_TEXTO_QUANTIDADE_CARACTERES_INVALIDA);
      o += 4 + tam;
      ++r->uiQuantidade;
    }
    return S_OK;
  }
};

}  // namespace

QVResultadoVerificacao QVVerificaArquivo(const std::string& sCaminho, EQVTipoConteudo eTipo,
                                         std::size_t tamRegistro) {
  QVResultadoVerificacao r;
  const std::size_t barra = sCaminho.find_last_of('/');
  const std::string sDiretorio = barra == std::string::npos ? "." : sCaminho.substr(0, barra);
  const std::string sNome = barra == std::string::npos ? sCaminho : sCaminho.substr(barra + 1);
  CQVDataBase db;
  db.SetSomenteLeitura(true);
  db.SetDiretorio(sDiretorio);
  const CQVProfilerEmpresa identidade;
  r.hr = db.Inicializa(&identidade);
  if (FAILED(r.hr)) return r;
  CArquivoVerificado arquivo(sNome, 0);
  r.hr = arquivo.DesabilitaControleCriacaoArquivos();
  if (SUCCEEDED(r.hr)) r.hr = arquivo.Inicializa(&db);
  if (SUCCEEDED(r.hr)) r.hr = arquivo.Verifica(eTipo, tamRegistro, &r);
  return r;
}
