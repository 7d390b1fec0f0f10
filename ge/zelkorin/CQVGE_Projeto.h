// The class QVGE_Projeto: the call frame over IQVGE_Projeto and its server,
// CGeProjetoBase.
#pragma once

#include "core/QVRPCDLL/T_QVUnknown.h"
#include "ge/zelkorin/CGeProjetoBase.h"
#include "ge/zelkorin/ZelkorinInterfaces.h"

class CQVGE_Projeto : public T_QVUnknown<IQVGE_Projeto, CGeProjetoBase> {
 public:
  using Frame = T_QVUnknown<IQVGE_Projeto, CGeProjetoBase>;

  explicit CQVGE_Projeto(Frame::FabricaServidor fabrica = {})
      : Frame("T_QVUnknown<struct IQVGE_Projeto,class CGeProjetoBase>", std::move(fabrica)) {}

  QV_METODOS_IQVGE_PROJETO(QV_REPASSA_AO_SERVIDOR, CQVGE_Projeto)
};
