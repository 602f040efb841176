# Front door for building and testing; see README.md.
.PHONY: deps test test-asan build clean

deps:
	tools/install-deps

build: deps
	cmake --preset default
	cmake --build --preset default

test: build
	ctest --preset default

test-asan: deps
	cmake --preset asan
	cmake --build --preset asan
	ctest --preset asan

clean:
	rm -rf build

# Builds, installs into a demo client root under build/default and starts the
# utility there (needs a desktop session).
.PHONY: run package
run:
	tools/run-demo

# The Debian package, written to build/default.
package: build
	cmake --build --preset default --target package

# Bounded libFuzzer runs of every fuzz target (clang); see fuzz/run.
.PHONY: fuzz bench
fuzz: deps
	fuzz/run

# The one benchmark report: every row a ratio against its floor.
bench: deps
	bench/run

# Applies each deliberate fault of tests/faults/ to a scratch copy and checks
# that some test fails, in a kept build under build/fault-check; not run by CI.
.PHONY: fault-check
fault-check: deps
	tools/fault-check
