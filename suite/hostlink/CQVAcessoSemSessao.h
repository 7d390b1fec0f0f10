// The accesses of a session base that has no connection (not initialised,
// or initialised without a company): every operation answers
// E_QVDF_SEM_SESSAO_SUITE with one error line, and writes nothing.
#pragma once

class IQVAcessoGerenciador;
class IQVAcessoEmpresarial;

IQVAcessoGerenciador* QVAcessoGerenciadorSemSessao();
IQVAcessoEmpresarial* QVAcessoEmpresarialSemSessao();
