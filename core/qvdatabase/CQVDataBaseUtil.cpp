#include "core/qvdatabase/CQVDataBaseUtil.h"

#include "core/qvdatabase/CQVDataBaseControleCriacaoArquivos.h"
#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVLog.h"
#include "platform/QVOsFile.h"
#include "suite/hostlink/QVSessaoSuite.h"

HRESULT CQVDataBaseUtil::GetPathArquivo(std::uint32_t eModulo, const std::string& sEmpresa,
                                        const std::string& sNomeArquivo, std::string* pPath) {
  std::string sDiretorio;
  QV_CHECK(QVSessaoSuite().GetDiretorioDadosModulo(eModulo, sEmpresa, &sDiretorio));
  if (sDiretorio.empty()) QV_RETURN(E_QVDF_EMPRESA_SEM_DIRETORIO_DADOS);
  *pPath = sDiretorio + "/" + sNomeArquivo;
  return S_OK;
}

HRESULT CQVDataBaseUtil::GetPathArquivo(const IQVFileBase* pArquivo, const std::string& sNomeArquivo,
                                        std::string* pPath) {
  const std::string sDiretorio = pArquivo->GetDiretorio();
  if (!sDiretorio.empty()) {
    *pPath = sDiretorio + "/" + sNomeArquivo;
    return S_OK;
  }
  QV_CHECK(GetPathArquivo(pArquivo->GetModulo(), pArquivo->GetEmpresa(), sNomeArquivo, pPath));
  return S_OK;
}

HRESULT CQVDataBaseUtil::RenomeiaArquivoTRA(const IQVFileBase* pArquivo, std::uint32_t,
                                            const std::string& sNomeArquivo) {
  std::string sOrigem, sDestino;
  QV_CHECK(GetPathArquivo(pArquivo, NomeArquivoTRA(sNomeArquivo), &sOrigem));
  QV_CHECK(GetPathArquivo(pArquivo, sNomeArquivo, &sDestino));
  QV_CHECK(QVMoveFile(sOrigem, sDestino));
  return S_OK;
}

HRESULT CQVDataBaseUtil::DeletaArquivo(IQVFileBase* pArquivo, std::uint32_t eModulo, const std::string& sNomeArquivo,
                                       EQVDataBase_DeletaArquivoFlag eFlag) {
  std::string sPath;
  QV_CHECK(GetPathArquivo(pArquivo, sNomeArquivo, &sPath));
  // The control first: a crash in between leaves a file that is on disk and
  // not listed (listed again at its next open), never one that is listed
  // and missing (refused at its next open).
  if (eFlag == EQVDataBase_DeletaArquivoFlag::eRemoverDoControleCriacaoArquivosInMemory &&
      !CQVDataBaseControleCriacaoArquivos::EhExcluido(sNomeArquivo)) {
    CQVDataBaseControleCriacaoArquivos controle;
    controle.SetModulo(eModulo);
    QV_CHECK(controle.Inicializa(pArquivo));
    QV_CHECK(controle.RemoveControleCriacaoArquivos(sNomeArquivo));
  }
  if (QVFileExists(sPath)) QV_CHECK(QVDeleteFile(sPath));
  return S_OK;
}

std::string CQVDataBaseUtil::NomeArquivoTRA(const std::string& sNomeArquivo) {
  const std::size_t ponto = sNomeArquivo.find_last_of('.');
  return (ponto == std::string::npos ? sNomeArquivo : sNomeArquivo.substr(0, ponto)) + ".tra";
}

std::string CQVDataBaseUtil::Extensao(const std::string& sNomeArquivo) {
  const std::size_t ponto = sNomeArquivo.find_last_of('.');
  return ponto == std::string::npos ? std::string() : sNomeArquivo.substr(ponto + 1);
}

HRESULT CQVDataBaseUtil::InicializaDataBaseDoChamador(CQVDataBase* pDB, const IQVDF_Profiler* pProfiler) {
  if (const auto* pArquivo = dynamic_cast<const IQVFileBase*>(pProfiler)) pDB->SetDiretorio(pArquivo->GetDiretorio());
  QV_CHECK(pDB->Inicializa(pProfiler));
  return S_OK;
}
