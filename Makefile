# The two commands: `make run` and `make test`. Each installs what is missing, configures and builds.
BUILD_DIR ?= build
BUILD_TYPE ?= RelWithDebInfo
JOBS ?= 2
CMAKE_FLAGS ?=

.PHONY: all bootstrap configure build run record test sanitize tsan bench fuzz clean

# A clone in another folder still finds what ccache compiled here before.
export CCACHE_BASEDIR := $(CURDIR)
export CCACHE_NOHASHDIR := 1

all: build

bootstrap:
	@scripts/bootstrap

$(BUILD_DIR)/build.ninja: | bootstrap
	cmake -S . -B $(BUILD_DIR) -G Ninja -DCMAKE_BUILD_TYPE=$(BUILD_TYPE) $(CMAKE_FLAGS)

configure: bootstrap $(BUILD_DIR)/build.ninja

build: configure
	cmake --build $(BUILD_DIR) -j$(JOBS)

run: build
	@scripts/run $(BUILD_DIR)

record: build
	@scripts/record-demo $(BUILD_DIR)

test: build
	cd $(BUILD_DIR) && QT_QPA_PLATFORM=offscreen SONGWEAVER_AUDIO=null ctest -j$(JOBS) --output-on-failure --timeout 300

# Every test again, built with AddressSanitizer and UndefinedBehaviorSanitizer.
SANITIZE_DIR ?= build-sanitize
sanitize: bootstrap
	cmake -S . -B $(SANITIZE_DIR) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O1 -g1" \
	  -DSONGWEAVER_SANITIZE=ON -DSONGWEAVER_BENCH=OFF
	cmake --build $(SANITIZE_DIR) -j$(JOBS)
	cd $(SANITIZE_DIR) && QT_QPA_PLATFORM=offscreen SONGWEAVER_AUDIO=null \
	  LSAN_OPTIONS=suppressions=$(CURDIR)/fuzz/lsan.supp UBSAN_OPTIONS=print_stacktrace=1 \
	  ctest -j$(JOBS) --output-on-failure --timeout 600

# The engine's, the song sessions', the library's and the guests' server's tests, built with
# ThreadSanitizer.
TSAN_DIR ?= build-tsan
tsan: bootstrap
	cmake -S . -B $(TSAN_DIR) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O1 -g1" \
	  -DSONGWEAVER_TSAN=ON -DSONGWEAVER_BENCH=OFF
	cmake --build $(TSAN_DIR) -j$(JOBS) --target audio_tests playback_tests library_tests remote_tests
	cd $(TSAN_DIR) && QT_QPA_PLATFORM=offscreen SONGWEAVER_AUDIO=null TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1 suppressions=$(CURDIR)/tests/tsan.supp" \
	  ctest -j$(JOBS) -L 'audio_tests|playback_tests|library_tests|remote_tests' --output-on-failure --timeout 600

bench: build
	@for b in $(BUILD_DIR)/bench/*_bench; do echo "== $$b"; QT_QPA_PLATFORM=offscreen SONGWEAVER_AUDIO=null $$b; done

# Each fuzz target runs FUZZ_SECONDS on its corpus in build-fuzz/corpus/NAME.
FUZZ_SECONDS ?= 600
fuzz:
	@scripts/bootstrap fuzz
	cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=clang++ \
	  -DSONGWEAVER_FUZZ=ON -DSONGWEAVER_TESTS=OFF -DSONGWEAVER_BENCH=OFF
	cmake --build build-fuzz -j$(JOBS) --target fuzz_targets
	@for f in build-fuzz/fuzz/*_fuzz; do n=$$(basename $$f); mkdir -p build-fuzz/corpus/$$n; \
	  echo "== $$n for $(FUZZ_SECONDS) s"; \
	  QT_QPA_PLATFORM=offscreen LSAN_OPTIONS=suppressions=fuzz/lsan.supp $$f -max_total_time=$(FUZZ_SECONDS) -max_len=4096 -timeout=5 \
	    -artifact_prefix=build-fuzz/ build-fuzz/corpus/$$n fuzz/seeds/$$n || exit 1; done

clean:
	rm -rf $(BUILD_DIR) $(SANITIZE_DIR) $(TSAN_DIR) build-fuzz out
