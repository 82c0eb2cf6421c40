/* The configuration functions of the C interface, through zenlo.h only. */
#include <stdio.h>
#include <string.h>

#include "apicheck.h"
#include "zenlo.h"

static void test_set_option(void) {
  zenlo_config cfg = zenlo_create_config();
  CHECK(!ZENLO_ERROR_CONFIG(cfg));
  CHECK(zenlo_set_option(cfg, "model_generation", "true") == 0);
  CHECK(zenlo_set_option(cfg, "dpll.restart_geometric_factor", "1.2") == 0);
  /* Out of range is only found when an environment is made. */
  CHECK(zenlo_set_option(cfg, "verbosity", "3") == 0);
  CHECK(zenlo_set_option(cfg, "verbosity", "abc") != 0);
  CHECK(zenlo_set_option(cfg, "model_generation", "TRUE") != 0);
  CHECK(zenlo_set_option(cfg, "no.such.option", "1") != 0);
  CHECK(zenlo_set_option(cfg, "debug.log_sections", "ALL") != 0);
  CHECK(zenlo_set_option(cfg, NULL, "1") != 0);
  CHECK(zenlo_set_option(cfg, "verbosity", NULL) != 0);
  /* The handle stays usable after failures. */
  CHECK(zenlo_set_option(cfg, "verbosity", "1") == 0);
  zenlo_destroy_config(cfg);

  zenlo_config none;
  none.repr = NULL;
  CHECK(zenlo_set_option(none, "verbosity", "1") != 0);
  zenlo_destroy_config(none);
}

static void test_parse_config(void) {
  zenlo_config cfg = zenlo_parse_config(
      "# settings\n"
      "verbosity = 1\n"
      "[QF_LRA, QF_LIA]\n"
      "theory.la.split_rat_eq = false\n"
      "unknown.option = 3\n"); /* kept, reported later */
  CHECK(!ZENLO_ERROR_CONFIG(cfg));
  CHECK(zenlo_set_option(cfg, "random_seed", "12") == 0);
  zenlo_destroy_config(cfg);

  CHECK(ZENLO_ERROR_CONFIG(zenlo_parse_config("verbosity 1\n")));
  CHECK(ZENLO_ERROR_CONFIG(zenlo_parse_config("[QF_BV\nverbosity = 1\n")));
  CHECK(ZENLO_ERROR_CONFIG(zenlo_parse_config("[]\n")));
  CHECK(ZENLO_ERROR_CONFIG(zenlo_parse_config(NULL)));

  cfg = zenlo_parse_config("");
  CHECK(!ZENLO_ERROR_CONFIG(cfg));
  zenlo_destroy_config(cfg);
}

static zenlo_config parse_via_file(const char* text) {
  zenlo_config cfg;
  FILE* f = tmpfile();
  if (f == NULL) {
    cfg.repr = NULL;
    return cfg;
  }
  fputs(text, f);
  rewind(f);
  cfg = zenlo_parse_config_file(f);
  fclose(f);
  return cfg;
}

static void test_parse_config_file(void) {
  zenlo_config cfg = parse_via_file("[default]\nmodel_generation = true\n");
  CHECK(!ZENLO_ERROR_CONFIG(cfg));
  zenlo_destroy_config(cfg);
  CHECK(ZENLO_ERROR_CONFIG(parse_via_file("= true\n")));
  CHECK(ZENLO_ERROR_CONFIG(zenlo_parse_config_file(NULL)));
}

static void test_default_config(void) {
  zenlo_config cfg = zenlo_create_default_config("QF_LRA");
  CHECK(!ZENLO_ERROR_CONFIG(cfg));
  CHECK(zenlo_set_option(cfg, "interpolation", "true") == 0);
  zenlo_destroy_config(cfg);
  cfg = zenlo_create_default_config("");
  CHECK(!ZENLO_ERROR_CONFIG(cfg));
  zenlo_destroy_config(cfg);
  CHECK(ZENLO_ERROR_CONFIG(zenlo_create_default_config(NULL)));
}

int main(void) {
  test_set_option();
  test_parse_config();
  test_parse_config_file();
  test_default_config();
  if (failures != 0) {
    fprintf(stderr, "%d check(s) failed\n", failures);
    return 1;
  }
  return 0;
}
