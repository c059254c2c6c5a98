/* Follows the room by the measures of a file, a line per step, and tells when something is wrong
 * and what explains it. */
#include <stdio.h>
#include <stdlib.h>
#include <tavro/tavro.h>

static void tell(tavro_step const* step) {
    size_t i;
    for (i = 0; i < tavro_step_alarms(step); ++i) {
        tavro_alarm alarm;
        tavro_step_alarm(step, i, &alarm);
        printf("at %g %s is too %s\n", tavro_step_time(step), alarm.measure,
               alarm.high ? "high" : "low");
    }
    for (i = 0; i < tavro_step_explanations(step); ++i) {
        tavro_explanation explanation;
        tavro_step_explanation(step, i, &explanation);
        printf("explained: %s\n", explanation.summary);
    }
}

int main(int argc, char** argv) {
    FILE* file = fopen(argc > 1 ? argv[1] : "", "r");
    tavro_plant* plant = NULL;
    tavro_run* run = NULL;
    tavro_step const* step = NULL;
    double rate;
    int started = 0;
    tavro_line line = {0};
    tavro_code code;
    if (file == NULL) {
        fprintf(stderr, "usage: room_c MEASURE-FILE\n");
        return 2;
    }
    line.measures = &rate;
    line.measure_count = 1;
    code = tavro_plant_builtin("therm", &plant);
    if (code == TAVRO_OK)
        code = tavro_run_new(plant, NULL, &run);
    while (code == TAVRO_OK && fscanf(file, "%lf%*[^\n]", &rate) == 1) {
        code = started ? tavro_run_step(run, &line, &step) : tavro_run_start(run, &line, &step);
        started = 1;
        tell(step);
    }
    if (code == TAVRO_OK && step != NULL)
        printf("at %g the thermostat is %s\n", tavro_step_time(step),
               tavro_step_mode(step, 0, "thermostat.mode"));
    else
        fprintf(stderr, "room_c: %s\n", tavro_last_error());
    tavro_run_free(run);
    tavro_plant_free(plant);
    fclose(file);
    return code == TAVRO_OK ? 0 : 1;
}
