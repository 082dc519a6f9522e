// In place of the ALSA sequencer, which not every machine has, for a host that sends its notes to it: writes a line of
// tick, type, note and velocity for each into the file that SENT names. Loaded ahead of the system's library.
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <alsa/seq_event.h>
#include <poll.h>

static int ends[2], ports;
static FILE* sent;

int snd_seq_open(void** handle) {
    *handle = ends;
    sent = fopen(getenv("SENT"), "w");
    return sent == NULL ? -1 : (setvbuf(sent, NULL, _IOLBF, 0), pipe(ends));
}
int snd_seq_event_output(void* handle, const snd_seq_event_t* event) {
    (void)handle;
    const int type = event->type == SND_SEQ_EVENT_NOTE ? SND_SEQ_EVENT_NOTEON : event->type;
    return fprintf(sent, "%u %d %d %d\n", event->time.tick, type, event->data.note.note, event->data.note.velocity);
}
int snd_seq_poll_descriptors(void* handle, struct pollfd* to, unsigned space, short events) {
    (void)handle;
    if (space > 0) *to = (struct pollfd){ends[0], events, 0};  // at which nothing ever arrives
    return 1;
}
int snd_seq_create_simple_port(void) { return ports++; }

#define ANSWER(function, answer) \
    int function(void) { return answer; }
#define NOTHING(function) ANSWER(function, 0)
ANSWER(snd_seq_client_id, 200)
ANSWER(snd_seq_alloc_queue, 1)
ANSWER(snd_seq_poll_descriptors_count, 1)
ANSWER(snd_seq_query_next_client, -2)
ANSWER(snd_seq_query_next_port, -2)
ANSWER(snd_seq_query_port_subscribers, -2)
NOTHING(snd_seq_close) NOTHING(snd_seq_free_queue) NOTHING(snd_seq_control_queue)
NOTHING(snd_seq_delete_simple_port) NOTHING(snd_seq_drain_output) NOTHING(snd_seq_drop_input)
NOTHING(snd_seq_drop_output) NOTHING(snd_seq_event_input) NOTHING(snd_seq_event_input_pending)
NOTHING(snd_seq_event_output_direct) NOTHING(snd_seq_get_any_client_info) NOTHING(snd_seq_get_any_port_info)
NOTHING(snd_seq_get_port_info) NOTHING(snd_seq_get_queue_status) NOTHING(snd_seq_get_queue_tempo)
NOTHING(snd_seq_set_queue_tempo) NOTHING(snd_seq_set_queue_timer) NOTHING(snd_seq_remove_events)
NOTHING(snd_seq_set_client_name) NOTHING(snd_seq_set_port_info) NOTHING(snd_seq_subscribe_port)
NOTHING(snd_seq_unsubscribe_port)
