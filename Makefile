# The two commands: `make run` and `make test`. Each installs what is missing, configures and builds.
BUILD_DIR ?= build
BUILD_TYPE ?= RelWithDebInfo
JOBS ?= 2
CMAKE_FLAGS ?=

.PHONY: all bootstrap configure build run test bench clean

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

test: build
	cd $(BUILD_DIR) && QT_QPA_PLATFORM=offscreen SONGWEAVER_AUDIO=null ctest -j$(JOBS) --output-on-failure --timeout 300

bench: build
	@for b in $(BUILD_DIR)/bench/*_bench; do echo "== $$b"; QT_QPA_PLATFORM=offscreen SONGWEAVER_AUDIO=null $$b; done

clean:
	rm -rf $(BUILD_DIR) out
