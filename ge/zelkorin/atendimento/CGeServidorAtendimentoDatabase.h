// The service-call (atendimento) database of one company: the files of
// the module's calls, opened and closed together, shared by every server
// object of the company in the process (CQVContainerFacade).
//
// Seven files are split by month (one physical file per month, root +
// "AAAAMM" + ".DAT"); the database has one current month for all seven at
// once (SelecionaMes). The current month is shared state: every operation
// that selects a month and works in it holds Trava() from the selection to
// its last access, so that another client of the company cannot move the
// month under it. Writes of calls hold it too, and take the database mark
// (MARCA_ATENDIMENTO) against other processes through GetNucleoMarcas().
#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "core/qvdatabase/CQVDataBase.h"
#include "core/qvdatabase/QVFileNameFormat.h"
#include "core/qvdatabase/QVFileReg.h"
#include "core/qvdatabase/QVFileSingleReg.h"
#include "core/qvdatabase/QVGroupFile.h"
#include "core/qvdatabase/QVTextFile.h"
#include "df/qvlibex/CQVDatabaseMarcaNucleo.h"
#include "df/qvlibex/QVDmc.h"
#include "ge/zelkorin/atendimento/ZelkorinRegistrosArquivo.h"
#include "suite/hostlink/QVSessaoSuite.h"

// The module's file names that are not a member of the database's table of
// fourteen: the version record, the settings and their texts, and the group
// of follow-up references.
inline constexpr const char* kQVArquivoVersaoAtendimento = "GEATENDIMENTOTECNICOVS.dat";
inline constexpr const char* kQVArquivoPropriedadesAtendimento = "GEATTPROP.dat";
inline constexpr const char* kQVArquivoPropriedadesAtendimentoTXT = "GEATTPROPTXT.dat";
inline constexpr const char* kQVArquivoPonteirosIntegACM = "GEATTPINT??????.DAT";

class CGeServidorAtendimentoDatabase : public CQVDataBase {
 public:
  template <class T>
  using ArquivoMensal = CQVFileReg<T, CQVFileNameFormatMa<10>>;
  template <class T>
  using ArquivoUnico = CQVFileReg<T, CQVFileNameFormat>;
  using ArquivoTexto = CQVTextFile;

  CGeServidorAtendimentoDatabase();
  ~CGeServidorAtendimentoDatabase() override;

  // The fourteen files, in the order of the module's table.
  ArquivoMensal<REG_ATENDIMENTO_V2> m_ArqAtendimento{"GEATTEC2", QV_GE};
  ArquivoMensal<REG_SERVICO_ATENDIMENTO_V3> m_ArqServico{"GEATSRVV3", QV_GE};
  ArquivoMensal<REG_DESPESA_ATENDIMENTO_V1> m_ArqDespesas{"GeAtDsp", QV_GE};
  ArquivoMensal<REG_CLASSIFICACAO_ATENDIMENTO_V1> m_ArqClassificacao{"GEAtCla", QV_GE};
  ArquivoMensal<REG_GERENCIAL_ATENDIMENTO_V1> m_ArqGerencial{"GEAtGer", QV_GE};
  ArquivoMensal<REG_SESSAO_ATENDIMENTO_V1> m_ArqSessao{"GEAtSes", QV_GE};
  ArquivoMensal<REG_EFD_REINF_V1> m_ArqEFD_REINF{"GEATEFDV1", QV_GE};
  ArquivoUnico<REG_RETENCOES_ATENDIMENTO_V1> m_ArqRetencoes{"GEAtRet", QV_GE};
  ArquivoUnico<REG_DEDUCOES_BCINSS_ATENDIMENTO_V1> m_ArqDeducoes{"GEAtDedu", QV_GE};
  ArquivoUnico<REG_PIS_COFINS_ATENDIMENTO_V1> m_ArqPisCofins{"GEATPC", QV_GE};
  ArquivoUnico<REG_REPRESENTANTE_ATENDIMENTO> m_ArqRepresentantes{"GEATRPS", QV_GE};
  ArquivoUnico<REG_GE_EFD_PROC_RET> m_ArqProcessoJurEFD{"GeProcJurEFDATTEC", QV_GE};
  ArquivoTexto m_ArqDescricaoDeducao{"GeAtDsDe.DAT", QV_GE};
  ArquivoTexto m_ArqStringAtendimento{"GeAtStrV1.DAT", QV_GE};

  // The version of the layouts, the settings and their texts, and each
  // call's follow-up references by month.
  CQVFileSingleReg<REG_GE_ATENDIMENTOTECNICO_VERSAO> m_ArqVersao{kQVArquivoVersaoAtendimento, QV_GE};
  CQVFileSingleReg<REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1> m_AtendimentoTecnicoPropriedades{
      kQVArquivoPropriedadesAtendimento, QV_GE};
  CQVTextFile m_AtendimentoTecnicoPropTXT{kQVArquivoPropriedadesAtendimentoTXT, QV_GE};
  CQVGroupFile<REG_QVDMC> m_ATTPonteirosIntegACM{kQVArquivoPonteirosIntegACM, QV_GE};

  // The current month of the seven monthly files.
  CQVMa GetMa() const { return CQVMa{m_iMA}; }
  // Makes iMA the current month of all seven monthly files (each finalises
  // its previous month and loads this one). Month 0 is refused with
  // E_INVALIDARG. After a failure the current month is unknown (0) and the
  // next selection opens every file again.
  [[nodiscard]] HRESULT SelecionaMes(std::uint16_t iMA);
  // The months that have a call file on disk, in order.
  [[nodiscard]] HRESULT GetMesesAtendimento(std::vector<std::uint16_t>* pMeses) const;
  // Hold while a month is selected and worked in (see above). Recursive: a
  // method may call another that takes it too.
  std::recursive_mutex& Trava() { return m_mutex; }
  // The marks of this company's folder for this process.
  CQVDatabaseMarcaNucleo& GetNucleoMarcas() { return m_NucleoMarcas; }
  // The company's data directory of the module (a file of the set resolves it).
  [[nodiscard]] HRESULT GetDiretorioDados(std::string* pDiretorio) const;


 protected:
  HRESULT OnInicializa() override;

 private:
  std::recursive_mutex m_mutex;
  std::uint16_t m_iMA = 0;
  CQVDatabaseMarcaNucleo m_NucleoMarcas;
};

// The name the facade is instantiated over.
using CQVDataBase_GE_AtendimentoTecnico = CGeServidorAtendimentoDatabase;
