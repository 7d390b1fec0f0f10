// The master data objects of the suite, as its readers hand them out.
//
// Each object carries the pointer it was read by (lPonteiro) and the fields
// a field-service company really keeps for it; texts are UTF-8, currency is
// QVMoeda (four implied decimals), dates are day numbers. The tables behind
// them are suite/store/QVEsquemaSuite.cpp's, column for field.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "df/qvlibex/QVMoeda.h"

struct CQVDadosDF_Municipio {
  std::uint32_t lPonteiro = 0;
  std::string sNome;
  std::string sUF;          // two letters
  std::string sCodigoIBGE;  // seven digits
};

struct CQVDadosDF_Filial {
  std::uint32_t lPonteiro = 0;
  std::uint32_t lPonteiroEmpresa = 0;
  std::string sCodigo;
  std::string sNome;
  std::string sCnpj;
  std::uint32_t lPonteiroMunicipio = 0;
  bool bAtiva = true;
};

// The branches a user works in, in this company: the active branches
// (filiais_usuarios) that are themselves active. The search keeps only the
// calls of these branches.
class CQVDadosDF_FiliaisAtivas {
 public:
  std::vector<std::uint32_t> m_lPonteiros;  // ascending
  bool EhFilialAtiva(std::uint32_t lPonteiroFilial) const {
    return std::binary_search(m_lPonteiros.begin(), m_lPonteiros.end(), lPonteiroFilial);
  }
  std::size_t GetQuantidade() const { return m_lPonteiros.size(); }
};

// The client record (LeBufferCFRTLibPla): identification, address with its
// municipality, contacts.
struct CQVDadosDF_Cliente {
  std::uint32_t lPonteiro = 0;
  std::uint32_t lPonteiroEmpresa = 0;
  std::string sCodigo;
  std::string sNome;  // razão social
  std::string sNomeFantasia;
  std::string sCnpjCpf;
  std::string sInscricaoEstadual;
  std::string sEndereco;
  std::string sBairro;
  std::string sCep;
  std::uint32_t lPonteiroMunicipio = 0;
  std::string sTelefone;
  std::string sEmail;
  bool bAtivo = true;
  std::uint32_t GetPonteiroMunicipio() const { return lPonteiroMunicipio; }
};

struct CQVDadosDF_UnidadeMedida {
  std::uint32_t lPonteiro = 0;
  std::string sSigla;  // "H", "UN", "KM"
  std::string sDescricao;
  int iCasasDecimais = 2;  // 0..4: the quantity's decimal places
};

// Service types: a title ('T') groups the services whose classification
// begins with its own ("01" is the title of "01.001"); 'S' is a service
// that is performed and charged.
inline constexpr char kQVServicoTitulo = 'T';
inline constexpr char kQVServicoNormal = 'S';

// A service of the catalogue. The unit of measure is filled by every
// reader (LeServico, LeBufferServico, LeBufferServicoEx alike).
class CQVDadosDF_Servico {
 public:
  std::uint32_t lPonteiro = 0;
  std::uint32_t lPonteiroEmpresa = 0;
  std::string sCodigo;
  std::string sDescricao;
  char cTipo = kQVServicoNormal;
  std::string sClassificacao;
  std::uint32_t lPonteiroUnidade = 0;
  std::string sUnidade;  // the unit's sigla
  int iCasasDecimais = 2;  // the unit's decimal places (2 without a unit)
  QVMoeda vValorUnitario = 0;
  std::string sCodigoTributacaoISS;
  bool bAtivo = true;

  const std::string& GetClassificacao() const { return sClassificacao; }
  char GetTipo() const { return cTipo; }
  bool EhTitulo() const { return cTipo == kQVServicoTitulo; }
};

struct CQVDadosDF_Usuario {
  std::uint32_t lPonteiro = 0;
  std::string sLogin;
  std::string sNome;
  std::string sEmail;
  std::string sPerfil;  // the permission profile
  bool bExecutor = false;
  bool bAtivo = true;
};

// The user filter of BuscaPonteirosUsuario: users allowed in the session's
// company, active, and, when asked, executors only and of the same
// permission profile as a given user. Pointers come out ascending.
struct CQVDadosDF_UsuarioFiltro {
  bool bSomenteExecutores = false;
  bool bIncluirInativos = false;
  std::uint32_t lPermissoesIguaisA = 0;  // 0: any profile
};

struct CQVDadosDF_Contrato {
  std::uint32_t lPonteiro = 0;
  std::uint32_t lPonteiroEmpresa = 0;
  std::string sCodigo;
  std::uint32_t lPonteiroCliente = 0;
  std::uint32_t iDataInicio = 0;
  std::uint32_t iDataFim = 0;
  QVMoeda vValorHora = 0;
  bool bAtivo = true;
};

struct CQVDadosDF_Empresa {
  std::uint32_t lPonteiro = 0;
  std::string sNome;  // the company's name in sessions and folders
  std::string sRazaoSocial;
  std::string sNomeFantasia;
  std::string sCnpj;
  std::string sInscricaoEstadual;
  std::string sEndereco;
  std::uint32_t lPonteiroMunicipio = 0;
  std::string sTelefone;
  std::string sEmail;
  std::string sPasta;  // its folder under the data root ("" : its name)
};
