// A plain data file with no records of its own: the destination of the
// temporary copies (extension "tra") that replace a file in one rename.
#pragma once

#include "core/qvdatabase/QVFileBase.h"

class CQVFileCopia : public CQVFileBase {
 public:
  using CQVFileBase::CQVFileBase;
  ~CQVFileCopia() override { QV_LOGA(Finaliza()); }
  using CQVFileBase::GravaDados;

 protected:
  std::string NomeClasseLog() const override { return "CQVFileCopia"; }
};
