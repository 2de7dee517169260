# The two commands of the README: `make run` and `make test`.
BUILD ?= build
JOBS ?= $(shell nproc)
CMAKE_FLAGS ?= -DCMAKE_BUILD_TYPE=RelWithDebInfo -DAEROLOOM_WERROR=ON

.PHONY: run test build deps configure clean

deps:
	bash scripts/install-deps.sh

$(BUILD)/build.ninja:
	cmake -S . -B $(BUILD) -G Ninja $(CMAKE_FLAGS)

configure: $(BUILD)/build.ninja

build: deps configure
	cmake --build $(BUILD) -j $(JOBS)

run: build
	bash scripts/run.sh $(BUILD)

test: build
	bash scripts/test.sh $(BUILD)

clean:
	rm -rf $(BUILD)
