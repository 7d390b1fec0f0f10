// Field mapping between the wire records of a service call and their stored
// records (docs/stored-layouts.md has the tables). Each pair of functions
// maps the fixed fields only: what a record owns (texts, lists, sub-records)
// is read and written by the server's Le.../Grava... functions, which also
// set every position the server assigns. ParaArquivo leaves those positions
// 0 in the stored record; ParaPs copies them and the counts into the wire
// record, with its arrays and system strings left null.
#pragma once

#include <cstdint>

#include "ge/zelkorin/ZelkorinRegistros.h"
#include "ge/zelkorin/atendimento/ZelkorinRegistrosArquivo.h"

void QVAtendimentoParaArquivo(const _REG_ATENDIMENTO_PS& ps, REG_ATENDIMENTO_V2& reg);
void QVAtendimentoParaPs(const REG_ATENDIMENTO_V2& reg, _REG_ATENDIMENTO_PS& ps);

void QVServicoParaArquivo(const _REG_SERVICO_ATENDIMENTO_PS& ps, REG_SERVICO_ATENDIMENTO_V3& reg);
void QVServicoParaPs(const REG_SERVICO_ATENDIMENTO_V3& reg, _REG_SERVICO_ATENDIMENTO_PS& ps);

void QVDespesaParaArquivo(const _REG_DESPESA_ATENDIMENTO_PS& ps, REG_DESPESA_ATENDIMENTO_V1& reg);
void QVDespesaParaPs(const REG_DESPESA_ATENDIMENTO_V1& reg, _REG_DESPESA_ATENDIMENTO_PS& ps);

void QVClassificacaoParaArquivo(const _REG_CLASSIFICACAO_GE_PS& ps, REG_CLASSIFICACAO_ATENDIMENTO_V1& reg);
void QVClassificacaoParaPs(const REG_CLASSIFICACAO_ATENDIMENTO_V1& reg, _REG_CLASSIFICACAO_GE_PS& ps);

void QVGerencialParaArquivo(const _REG_GERENCIAL_GE_PS& ps, REG_GERENCIAL_ATENDIMENTO_V1& reg);
void QVGerencialParaPs(const REG_GERENCIAL_ATENDIMENTO_V1& reg, _REG_GERENCIAL_GE_PS& ps);

void QVSessaoParaArquivo(const _REG_SESSAO_ATENDIMENTO_PS& ps, REG_SESSAO_ATENDIMENTO_V1& reg);
void QVSessaoParaPs(const REG_SESSAO_ATENDIMENTO_V1& reg, _REG_SESSAO_ATENDIMENTO_PS& ps);

void QVRetencoesParaArquivo(const _REG_RETENCOES_PS& ps, REG_RETENCOES_ATENDIMENTO_V1& reg);
void QVRetencoesParaPs(const REG_RETENCOES_ATENDIMENTO_V1& reg, _REG_RETENCOES_PS& ps);

// The description (cDescricao) goes to the deductions' text file.
void QVDeducaoParaArquivo(const _REG_DEDUCOES_BC_INSS_PS& ps, REG_DEDUCOES_BCINSS_ATENDIMENTO_V1& reg);
void QVDeducaoParaPs(const REG_DEDUCOES_BCINSS_ATENDIMENTO_V1& reg, _REG_DEDUCOES_BC_INSS_PS& ps);

void QVPisCofinsParaArquivo(const _REG_PIS_COFINS_GE_PS& ps, REG_PIS_COFINS_ATENDIMENTO_V1& reg);
void QVPisCofinsParaPs(const REG_PIS_COFINS_ATENDIMENTO_V1& reg, _REG_PIS_COFINS_GE_PS& ps);

void QVEFDParaArquivo(const tagREG_EFD_REINF_ITENS_NFPS& ps, REG_EFD_REINF_V1& reg);
void QVEFDParaPs(const REG_EFD_REINF_V1& reg, tagREG_EFD_REINF_ITENS_NFPS& ps);

void QVProcessoParaArquivo(const tagREG_EFD_PROCESSO_JURIDICO_NFPS& ps, REG_GE_EFD_PROC_RET& reg);
void QVProcessoParaPs(const REG_GE_EFD_PROC_RET& reg, tagREG_EFD_PROCESSO_JURIDICO_NFPS& ps);

// The second client's label (rNomeCliente2) goes to the settings' text file.
void QVPropriedadesParaArquivo(const _REG_PROPRIEDADES_ATENDIMENTO_PS& ps, REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1& reg);
void QVPropriedadesParaPs(const REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1& reg, _REG_PROPRIEDADES_ATENDIMENTO_PS& ps);

// The identifier text of a stored service or expense: its month as "MMAA",
// a dash and its position in six digits ("0720-000015"), cut to the wire's
// 12-byte field.
void QVChaveRegistroMes(char (&cChave)[12], std::uint16_t iMA, std::uint32_t lPosicao);
