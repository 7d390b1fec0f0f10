// CQVGroupFile<T>: a group of per-month record files of T, reached by month
// code. Reads go to the month's member; a write to a month without a
// member creates its file.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "core/qvdatabase/QVFile.h"
#include "core/qvdatabase/QVGroupFileBase.h"
#include "df/qvlibex/QVCodigos.h"

template <class T>
class CQVGroupFile : public CQVGroupFileBase {
 public:
  using Indice = typename CQVFile<T>::Indice;

  CQVGroupFile(std::string sPadrao, std::uint32_t eModulo, std::initializer_list<Indice> indices = {})
      : CQVGroupFileBase(std::move(sPadrao), eModulo), m_Indices(indices) {}

  // The member of a month, or null (a failure to look for it is logged).
  CQVFile<T>* GetArquivo(std::uint64_t uiChaveNomeArquivo) {
    CQVFileBase* p = nullptr;
    static_cast<void>(ProcuraMembro(uiChaveNomeArquivo, &p));
    return static_cast<CQVFile<T>*>(p);
  }

  [[nodiscard]] HRESULT Le(std::uint64_t uiChaveNomeArquivo, QVUInt uiPosicao, T* pRegistro) {
    CQVFileBase* pMembro = nullptr;
    QV_CHECK_ARQ(ProcuraMembro(uiChaveNomeArquivo, &pMembro),
                 {"uiChaveNomeArquivo", std::to_string(uiChaveNomeArquivo)});
    auto* p = static_cast<CQVFile<T>*>(pMembro);
    if (p == nullptr)
      QV_RETURN_ARQ(E_QVCR_ARQUIVO_NAO_EXISTE, {"uiChaveNomeArquivo", std::to_string(uiChaveNomeArquivo)});
    QV_CHECK_ARQ(p->Le(uiPosicao, pRegistro), {"uiChaveNomeArquivo", std::to_string(uiChaveNomeArquivo)});
    return S_OK;
  }

  // A month without a member has no key: not present, no failure.
  [[nodiscard]] HRESULT ExisteIndex(std::uint64_t uiChaveNomeArquivo, QVUInt uiColunaIndexacao, std::uint64_t uiChave,
                                    bool* pbExiste, QVUInt* puiPosicaoIndex) {
    *pbExiste = false;
    *puiPosicaoIndex = 0;
    CQVFileBase* pMembro = nullptr;
    QV_CHECK_ARQ(ProcuraMembro(uiChaveNomeArquivo, &pMembro),
                 {"uiChaveNomeArquivo", std::to_string(uiChaveNomeArquivo)});
    auto* p = static_cast<CQVFile<T>*>(pMembro);
    if (p == nullptr) return S_OK;
    QV_CHECK_ARQ(p->ExisteIndex(uiColunaIndexacao, uiChave, pbExiste, puiPosicaoIndex),
                 {"uiChaveNomeArquivo", std::to_string(uiChaveNomeArquivo)});
    return S_OK;
  }

  [[nodiscard]] HRESULT GravaColecao(std::uint64_t uiChaveNomeArquivo, QVUInt& uiPosicao,
                                     const std::vector<T>& aRegistros) {
    CQVFileBase* pMembro = nullptr;
    QV_CHECK_ARQ(IncluiMembro(uiChaveNomeArquivo, &pMembro));
    QV_CHECK_ARQ(static_cast<CQVFile<T>*>(pMembro)->GravaColecao(uiPosicao, aRegistros),
                 {"uiChaveNomeArquivo", std::to_string(uiChaveNomeArquivo)}, {"uiPosicao", std::to_string(uiPosicao)});
    return S_OK;
  }

  std::string GetNomeEstrutura() const override { return QVNomeEstrutura<T>(); }

 protected:
  std::unique_ptr<CQVFileBase> NewFile(const std::string& sNomeArquivo) override {
    return std::make_unique<CQVFile<T>>(sNomeArquivo, GetModulo(), m_Indices);
  }

 private:
  std::vector<Indice> m_Indices;
};
