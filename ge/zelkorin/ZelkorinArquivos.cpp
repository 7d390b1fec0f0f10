#include "ge/zelkorin/ZelkorinArquivos.h"

#include "core/qvdatabase/QVFileNameFormat.h"

namespace {

constexpr QVArquivoGE kArquivos[] = {
    // The service calls, one file per month.
    {"GEATTEC2", EQVTipoConteudo::Registros, 512, true},
    {"GEATSRVV3", EQVTipoConteudo::Registros, 384, true},
    {"GeAtDsp", EQVTipoConteudo::Registros, 208, true},
    {"GEAtCla", EQVTipoConteudo::Registros, 64, true},
    {"GEAtGer", EQVTipoConteudo::Registros, 32, true},
    {"GEAtSes", EQVTipoConteudo::Registros, 8, true},
    {"GEATEFDV1", EQVTipoConteudo::Registros, 128, true},
    // The follow-up references of the calls, one file per month.
    {"GEATTPINT", EQVTipoConteudo::Registros, 8, true},
    // The service calls, one file.
    {"GEAtRet", EQVTipoConteudo::Registros, 64, false},
    {"GEAtDedu", EQVTipoConteudo::Registros, 32, false},
    {"GEATPC", EQVTipoConteudo::Registros, 128, false},
    {"GEATRPS", EQVTipoConteudo::Registros, 4, false},
    {"GeProcJurEFDATTEC", EQVTipoConteudo::Registros, 16, false},
    {"GeAtDsDe", EQVTipoConteudo::Texto, 0, false},
    {"GeAtStrV1", EQVTipoConteudo::Texto, 0, false},
    // Settings, the layouts' version and projects.
    {"GEATENDIMENTOTECNICOVS", EQVTipoConteudo::RegistroUnico, 16, false},
    {"GEATTPROP", EQVTipoConteudo::RegistroUnico, 640, false},
    {"GEATTPROPTXT", EQVTipoConteudo::Texto, 0, false},
    {"GEATPRJV2", EQVTipoConteudo::Registros, 32, false},
    {"GEATPRJTXT", EQVTipoConteudo::Texto, 0, false},
    // The file-creation control of the directory.
    {"QVDATABASE_FILE_CTRL", EQVTipoConteudo::Texto, 0, false},
};

// The conversion renames the old month names of nine roots (the first nine,
// in its order); the others have only ever had "AAAAMM" names. The old
// atendimento files ("GEATEND" + "MMAA") are no group: the conversion turns
// them into "GEATTEC2" months. "GeAtSrv" is a prefix of "GEATSRVV3" and
// "GeAtCmt" of "GeAtCmtSrv": their patterns differ in length, so no name is
// a member of two groups.
constexpr QVRaizMensalGE kRaizesMensais[] = {
    {"GEATTEC2", true}, {"GeAtSrv", true},    {"GeAtDsp", true},    {"GEAtCla", true},    {"GEAtGer", true},
    {"GEAtSes", true},  {"GeAtCmt", true},    {"GeAtCmtSrv", true}, {"GeAtDec", true},    {"GEATSRVV3", false},
    {"GEATEFDV1", false}, {"GEATTPINT", false},
};

}  // namespace

const QVArquivoGE* QVProcuraArquivoGE(const std::string& sNomeArquivo) {
  for (const QVArquivoGE& a : kArquivos) {
    if (a.bPorMes ? QVCorrespondeAoPadraoGrupo(QVPadraoGrupoMensal(a.raiz), sNomeArquivo)
                  : QVNomesIguais(sNomeArquivo, std::string(a.raiz) + ".dat"))
      return &a;
  }
  return nullptr;
}

std::span<const QVRaizMensalGE> QVRaizesMensaisGE() { return kRaizesMensais; }
