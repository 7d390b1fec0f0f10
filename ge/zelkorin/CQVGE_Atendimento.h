// The class QVGE_Atendimento: the call frame over IQVGE_Atendimento and its
// server, CGeServidorAtendimento. Each business method passes its arguments
// unchanged to the server's method of the same name through the frame.
#pragma once

#include "core/QVRPCDLL/T_QVUnknown.h"
#include "ge/zelkorin/CGeServidorAtendimento.h"
#include "ge/zelkorin/ZelkorinInterfaces.h"

class CQVGE_Atendimento : public T_QVUnknown<IQVGE_Atendimento, CGeServidorAtendimento> {
 public:
  using Frame = T_QVUnknown<IQVGE_Atendimento, CGeServidorAtendimento>;

  explicit CQVGE_Atendimento(Frame::FabricaServidor fabrica = {})
      : Frame("T_QVUnknown<struct IQVGE_Atendimento,class CGeServidorAtendimento>", std::move(fabrica)) {}

  QV_METODOS_IQVGE_ATENDIMENTO(QV_REPASSA_AO_SERVIDOR, CQVGE_Atendimento)
};
