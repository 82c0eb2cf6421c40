"""The logics that bench/fuzz knows, each with its generator module."""
from . import (gen_arr, gen_bool, gen_bv, gen_lia, gen_lra, gen_uf,
               gen_ufbv, gen_ufla)

LOGICS = {g.LOGIC: g for g in (gen_bool, gen_bv, gen_lia, gen_lra, gen_uf,
                               gen_ufla.UFLIA, gen_ufla.UFLRA, gen_ufbv,
                               gen_arr.AX, gen_arr.ALIA, gen_arr.AUFLIA,
                               gen_arr.AX_BOOL, gen_arr.ALIA_BOOL)}
DIMACS = "DIMACS"
