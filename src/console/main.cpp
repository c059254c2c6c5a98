// The executive: one compiled model behind a console. The build names the model.
#include "console/console.h"

extern CompiledModel const TAVRO_MODEL;

int main(int argc, char** argv) {
    runExecutive(TAVRO_MODEL, argc, argv);
}
