/* Tavro for C: follow a physical system by its measures, and learn which fault explains them.
 *
 * It says what <tavro/tavro.hpp> says, which also explains each option and each answer; here is
 * what differs.
 *
 * Handles. A tavro_plant and a tavro_run belong to whoever made them and go back by
 * tavro_plant_free and tavro_run_free, in any order; null is allowed there. A tavro_step belongs to
 * its run and holds until the next start or step of that run, or until the run is freed.
 *
 * Texts. Every text that is given out belongs to its plant or step and lives as long. Texts that
 * are given in are copied.
 *
 * Errors. What can fail returns a tavro_code, TAVRO_OK for success; what it was to fill is then
 * left alone, but for handles, which become null. tavro_last_error tells in words what failed last
 * in the calling thread. TAVRO_ARGUMENT, TAVRO_OPTIONS, TAVRO_DATA and TAVRO_STATE are wrong calls,
 * which changed nothing; any later code stops a run, which answers start and step with it from then
 * on.
 *
 * Counts are 0 and other answers zero, NaN or null where a handle is null or a place is out of
 * range.
 *
 * Threads. Any number of runs may go on side by side, also of one plant; one run is used by one
 * thread at a time.
 */
#ifndef TAVRO_H
#define TAVRO_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

#define TAVRO_C_API __attribute__((visibility("default")))

typedef struct tavro_plant tavro_plant;
typedef struct tavro_run tavro_run;
typedef struct tavro_step tavro_step;

typedef enum tavro_code {
    TAVRO_OK = 0,
    TAVRO_ARGUMENT = 1, /* a null where none may be */
    TAVRO_PLANT = 2,    /* there is no such plant, or its check has refused it */
    TAVRO_OPTIONS = 3,  /* an option is out of its range, or does not fit the plant */
    TAVRO_DATA = 4,     /* a wrong count, a value that is no finite number, an unknown name */
    TAVRO_STATE = 5,    /* not legal in the state of the run */
    TAVRO_NO_COVER = 6,
    TAVRO_EVENT_IMPOSSIBLE = 7,
    TAVRO_NO_DIAGNOSIS = 8,
    TAVRO_OUTSIDE_WINDOW = 9,
    TAVRO_MEMORY = 10,
    TAVRO_INTERNAL = 11, /* a defect of the library: no call is known to lead here */
    TAVRO_GIVEN_UP = 12  /* within a step, since give_up of the options said so */
} tavro_code;

TAVRO_C_API char const* tavro_version(void);
/* "" when nothing has failed in this thread; holds until the next call that fails in it. */
TAVRO_C_API char const* tavro_last_error(void);

/* ---- Plants ---- */

typedef enum tavro_names {
    TAVRO_INPUTS,
    TAVRO_MEASURES,
    TAVRO_VARIABLES,
    TAVRO_COMPONENTS,
    TAVRO_MODES,
    TAVRO_COMMANDS,
    TAVRO_OBSERVATIONS
} tavro_names;

/* The plants that are compiled into the library; their names live as long as the program. */
TAVRO_C_API size_t tavro_builtin_count(void);
TAVRO_C_API char const* tavro_builtin_name(size_t place);
TAVRO_C_API tavro_code tavro_plant_builtin(char const* name, tavro_plant** plant);
/* A plant as text. The error tells every message of its check, or as many as have room. */
TAVRO_C_API tavro_code tavro_plant_load(char const* path, tavro_plant** plant);
TAVRO_C_API void tavro_plant_free(tavro_plant* plant);
/* The name of the plant itself. */
TAVRO_C_API char const* tavro_plant_own_name(tavro_plant const* plant);
TAVRO_C_API int tavro_plant_is_discrete(tavro_plant const* plant);
TAVRO_C_API double tavro_plant_period(tavro_plant const* plant);
/* How many names the plant has of one sort, and each of them. */
TAVRO_C_API size_t tavro_plant_count(tavro_plant const* plant, tavro_names names);
TAVRO_C_API char const* tavro_plant_name(tavro_plant const* plant, tavro_names names, size_t place);

/* ---- Runs ---- */

/* To be filled by tavro_options_init before any field is set. */
typedef struct tavro_options {
    size_t size; /* of this record as the program knows it; set by tavro_options_init */
    int simulate;
    int isolation;
    int threshold;
    int global_constraints;
    double precision;
    int accumulation;
    int merge;
    char const* rules; /* null for the default */
    int candidates;
    double noise; /* of every measure that is not named */
    /* Of the measures that are named, one bound for each; read before tavro_run_new returns. */
    char const* const* noise_measures;
    double const* noise_bounds;
    size_t noise_count;
    int multi;
    double reset;
    int watch_memory;
    /* Null, or called with each line and with *context*. */
    void (*trace)(void* context, char const* line);
    void (*messages)(void* context, char const* line);
    void* context;
    /* Null, or asked within a step with *context*: not 0 gives the step up. */
    int (*give_up)(void* context);
} tavro_options;

#define tavro_options_init(options) tavro_options_init_sized((options), sizeof(tavro_options))
TAVRO_C_API void tavro_options_init_sized(tavro_options* options, size_t size);

/* What is known at one step; all zero for nothing. A measure that is missing is NaN. */
typedef struct tavro_line {
    double const* inputs;
    size_t input_count;
    double const* measures;
    size_t measure_count;
    char const* const* commands;
    size_t command_count;
    char const* const* observations;
    size_t observation_count;
} tavro_line;

/* Without options: the defaults. */
TAVRO_C_API tavro_code tavro_run_new(tavro_plant const* plant, tavro_options const* options,
                                     tavro_run** run);
TAVRO_C_API void tavro_run_free(tavro_run* run);
/* The time of the last step that ended well. */
TAVRO_C_API double tavro_run_time(tavro_run const* run);
/* Without a line: nothing is known. *step* may be null. */
TAVRO_C_API tavro_code tavro_run_start(tavro_run* run, tavro_line const* line,
                                       tavro_step const** step);
TAVRO_C_API tavro_code tavro_run_step(tavro_run* run, tavro_line const* line,
                                      tavro_step const** step);

/* ---- Steps ---- */

typedef struct tavro_candidate {
    double rank;
    double probability;
    int agrees;
} tavro_candidate;

typedef struct tavro_alarm {
    char const* measure;
    int high; /* 0: the measure is below the bounds */
} tavro_alarm;

typedef struct tavro_suspect {
    char const* influence;
    int delay;
    char const* condition;
} tavro_suspect;

typedef struct tavro_explanation {
    size_t candidate;
    char const* component;
    char const* from;
    char const* to;
    int step;
    double time;
    double earliest;
    double latest;
    double rank;
    int failure;
    int unknown;
    char const* summary;
} tavro_explanation;

TAVRO_C_API double tavro_step_time(tavro_step const* step);
TAVRO_C_API int tavro_step_diagnosed(tavro_step const* step);
TAVRO_C_API char const* tavro_step_diagnosis(tavro_step const* step);

TAVRO_C_API size_t tavro_step_candidates(tavro_step const* step);
TAVRO_C_API tavro_code tavro_step_candidate(tavro_step const* step, size_t place,
                                            tavro_candidate* candidate);
/* The mode of a variable, one of TAVRO_MODES; null for any other. */
TAVRO_C_API char const* tavro_step_mode(tavro_step const* step, size_t candidate,
                                        char const* variable);
/* TAVRO_DATA when there is no such candidate or variable. */
TAVRO_C_API tavro_code tavro_step_bounds(tavro_step const* step, size_t candidate,
                                         char const* variable, double* lower, double* upper);

TAVRO_C_API size_t tavro_step_alarms(tavro_step const* step);
TAVRO_C_API tavro_code tavro_step_alarm(tavro_step const* step, size_t place, tavro_alarm* alarm);

/* Sets of suspects, and the suspects of each. */
TAVRO_C_API size_t tavro_step_suspect_sets(tavro_step const* step);
TAVRO_C_API size_t tavro_step_suspects(tavro_step const* step, size_t set);
TAVRO_C_API tavro_code tavro_step_suspect(tavro_step const* step, size_t set, size_t place,
                                          tavro_suspect* suspect);

TAVRO_C_API size_t tavro_step_explanations(tavro_step const* step);
TAVRO_C_API tavro_code tavro_step_explanation(tavro_step const* step, size_t place,
                                              tavro_explanation* explanation);

#ifdef __cplusplus
}
#endif

#endif
