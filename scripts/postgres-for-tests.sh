# Sourced by the test scripts before they run ctest: starts a private PostgreSQL cluster for the
# server's API tests against PostgreSQL (the *_pg tests), puts its address in the environment and
# stops it however the script ends. Without it the *_pg tests fail in CI and skip elsewhere, each
# saying why. The cluster's script is named by an absolute path, so the trap finds it wherever
# the caller has gone since.
cluster="$PWD/scripts/postgres-cluster"
pg_env=$(bash "$cluster" start) || echo "the PostgreSQL test cluster did not start" >&2
eval "$pg_env"
trap 'if [ -n "${ORVEL_TEST_PGHOST:-}" ]; then bash "$cluster" stop "$ORVEL_TEST_PGHOST"; fi' EXIT
