// CQVFile<T>: a file of records of the plain type T (QVFileRegistros.h holds
// the mechanics). Concrete files declare their index columns:
//
//   CQVFile<REG_PROJETO> m_ArqProjetos{"GEATPRJV2.dat", QV_GE,
//       {{&ChaveCodigo, false, false}}};   // column 0: unique, never zero
#pragma once

#include <cxxabi.h>

#include <cstdint>
#include <cstdlib>
#include <initializer_list>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <vector>

#include "core/qvdatabase/QVFileRegistros.h"

// The name of a record type for the log and the tools: its run-time name,
// after the first blank when it has one ("struct REG_X" gives "REG_X").
template <class T>
std::string QVNomeEstrutura() {
  int status = 0;
  char* nome = abi::__cxa_demangle(typeid(T).name(), nullptr, nullptr, &status);
  std::string s = status == 0 && nome != nullptr ? nome : typeid(T).name();
  std::free(nome);
  const std::size_t branco = s.find(' ');
  return branco == std::string::npos ? s : s.substr(branco + 1);
}

template <class T>
class CQVFile : public CQVFileRegistros {
  static_assert(std::is_trivially_copyable_v<T> && std::is_standard_layout_v<T>,
                "records are plain bytes on disk");

 public:
  // The key of a record for an index column (0: no key).
  using FuncaoChave = std::uint64_t (*)(const T& registro, QVUInt uiColunaIndexacao);
  struct Indice {
    FuncaoChave chave;
    bool bPermiteChaveZero = true;
    bool bPermiteChaveRepetida = true;
  };

  CQVFile(std::string sNomeArquivo, std::uint32_t eModulo, std::initializer_list<Indice> indices = {})
      : CQVFile(std::move(sNomeArquivo), eModulo, std::vector<Indice>(indices)) {}
  CQVFile(std::string sNomeArquivo, std::uint32_t eModulo, const std::vector<Indice>& indices)
      : CQVFileRegistros(std::move(sNomeArquivo), eModulo, sizeof(T), QVNomeEstrutura<T>(), Descritores(indices)) {
    for (const Indice& i : indices) m_Chaves.push_back(i.chave);
  }

  [[nodiscard]] HRESULT Le(QVUInt uiPosicao, T* pRegistro) { return LeRegistro(uiPosicao, pRegistro); }
  [[nodiscard]] HRESULT Grava(QVUInt& uiPosicao, const T& registro) { return GravaRegistros(uiPosicao, &registro, 1); }
  [[nodiscard]] HRESULT GravaColecao(QVUInt& uiPosicao, const std::vector<T>& aRegistros) {
    return GravaRegistros(uiPosicao, aRegistros.data(), aRegistros.size());
  }
  using CQVFileRegistros::ExisteIndex;
  // The fourth look-up: the key of a record, in a column.
  [[nodiscard]] HRESULT ExisteIndex(QVUInt uiColunaIndexacao, const T& registro, bool* pbExiste,
                                    QVUInt* puiPosicaoIndex) {
    const std::uint64_t uiChave =
        uiColunaIndexacao < m_Chaves.size() ? m_Chaves[uiColunaIndexacao](registro, uiColunaIndexacao) : 0;
    return CQVFileRegistros::ExisteIndex(uiColunaIndexacao, uiChave, pbExiste, puiPosicaoIndex);
  }
  [[nodiscard]] HRESULT SetConteudo(const std::vector<T>& aRegistros) {
    return CQVFileRegistros::SetConteudo(aRegistros.data(), aRegistros.size());
  }
  [[nodiscard]] HRESULT SetArrayData(const std::vector<T>& aRegistros) {
    return CQVFileRegistros::SetArrayData(aRegistros.data(), aRegistros.size());
  }
  [[nodiscard]] HRESULT SetRegData(QVUInt uiPosicao, const T& registro) {
    return CQVFileRegistros::SetRegData(uiPosicao, &registro);
  }
  const T* GetRegistro(QVUInt uiPosicao) { return static_cast<const T*>(GetPonteiroRegistro(uiPosicao)); }

 private:
  // Runs before this class's members exist: it may touch only its argument.
  static std::vector<DescritorIndice> Descritores(const std::vector<Indice>& indices) {
    std::vector<DescritorIndice> d;
    for (const Indice& i : indices) {
      const FuncaoChave f = i.chave;
      d.push_back({[f](const void* p, QVUInt col) { return f(*static_cast<const T*>(p), col); },
                   i.bPermiteChaveZero, i.bPermiteChaveRepetida});
    }
    return d;
  }

  std::vector<FuncaoChave> m_Chaves;
};
