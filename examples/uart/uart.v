// SPDX-License-Identifier: Apache-2.0
// A serial port with a byte-wide register bus: two queues, a transmitter, a receiver and a baud
// generator. Small, but with what a recorder meets in practice: four levels of hierarchy, a
// generate block, a bus in both directions, vectors of both index orders, registers that nobody
// resets, and outputs that go through high impedance.
`timescale 1ns / 1ps

// A pulse on `tick` every `divisor` + 1 clocks; sixteen of them make one bit on the line.
module baud_generator (
    input            clk,
    input            reset,
    input      [0:7] divisor,
    output reg       tick
);
    reg [7:0] count;

    always @(posedge clk)
        if (reset) begin
            count <= 8'd0;
            tick  <= 1'b0;
        end else begin
            tick  <= count == divisor;
            count <= count == divisor ? 8'd0 : count + 8'd1;
        end
endmodule

// One stored byte of a queue. It has no reset: it is unknown until it is first written.
module queue_cell (
    input            clk,
    input            write,
    input      [7:0] in,
    output reg [7:0] out
);
    always @(posedge clk) if (write) out <= in;
endmodule

// A queue of 2**ADDRESS_BITS bytes.
module queue #(
    parameter ADDRESS_BITS = 2
) (
    input        clk,
    input        reset,
    input        push,
    input        pop,
    input  [7:0] in,
    output [7:0] out,
    output       empty,
    output       full
);
    localparam DEPTH = 1 << ADDRESS_BITS;

    reg  [ADDRESS_BITS:0] write_at, read_at;
    wire [8*DEPTH-1:0]    cells;

    assign empty = write_at == read_at;
    assign full  = write_at == (read_at ^ DEPTH);
    assign out   = cells >> {read_at[ADDRESS_BITS-1:0], 3'd0};

    genvar i;
    generate
        for (i = 0; i < DEPTH; i = i + 1) begin : slot
            wire write = push && !full && write_at[ADDRESS_BITS-1:0] == i;
            queue_cell store (.clk(clk), .write(write), .in(in), .out(cells[8*i+:8]));
        end
    endgenerate

    always @(posedge clk)
        if (reset) begin
            write_at <= 0;
            read_at  <= 0;
        end else begin
            if (push && !full) write_at <= write_at + 1;
            if (pop && !empty) read_at <= read_at + 1;
        end
endmodule

// Sends a start bit, eight data bits (lowest first), a parity bit and a stop bit.
module transmitter (
    input             clk,
    input             reset,
    input             tick,
    input             empty,
    input      [7:0]  data,
    output reg        pop,
    output            line,
    output reg        busy
);
    reg [10:0] shift;
    reg [3:0]  bits_left;
    reg [3:0]  phase;

    assign line = busy ? shift[0] : 1'b1;

    always @(posedge clk)
        if (reset) begin
            pop       <= 1'b0;
            busy      <= 1'b0;
            bits_left <= 4'd0;
            phase     <= 4'd0;
        end else begin
            pop <= 1'b0;
            if (!busy && !empty && !pop) begin
                shift     <= {1'b1, ^data, data, 1'b0};
                bits_left <= 4'd11;
                phase     <= 4'd0;
                busy      <= 1'b1;
                pop       <= 1'b1;
            end else if (busy && tick) begin
                phase <= phase + 4'd1;
                if (phase == 4'd15) begin
                    shift     <= {1'b1, shift[10:1]};
                    bits_left <= bits_left - 4'd1;
                    busy      <= bits_left != 4'd1;
                end
            end
        end
endmodule

// Samples the line in the middle of each bit; `error` says that the parity or the stop bit was wrong.
module receiver (
    input            clk,
    input            reset,
    input            tick,
    input            line,
    output reg       push,
    output     [0:7] data,
    output reg       error
);
    reg [0:1]  seen;
    reg [9:0]  shift;
    reg [3:0]  bits_left;
    reg [3:0]  phase;
    reg        active;

    // Index 0 is the highest bit here: the register file reads it so.
    assign data = shift[7:0];

    always @(posedge clk) seen <= {line, seen[0]};

    always @(posedge clk)
        if (reset) begin
            push      <= 1'b0;
            error     <= 1'b0;
            active    <= 1'b0;
            bits_left <= 4'd0;
            phase     <= 4'd0;
        end else begin
            push <= 1'b0;
            if (!active) begin
                phase <= 4'd0;
                if (tick && !seen[1]) begin
                    active    <= 1'b1;
                    bits_left <= 4'd11;
                    phase     <= 4'd1;
                end
            end else if (tick) begin
                phase <= phase + 4'd1;
                if (phase == 4'd8) begin
                    shift     <= {seen[1], shift[9:1]};
                    bits_left <= bits_left - 4'd1;
                    if (bits_left == 4'd1) begin
                        active <= 1'b0;
                        push   <= 1'b1;
                        // The shift register holds data and parity; the line is the stop bit.
                        error  <= ^shift[9:1] || !seen[1];
                    end
                end
            end
        end
endmodule

// The whole port. Register 0 is the data queue, 1 the state, 2 the divisor of the baud generator.
module uart (
    input            clk,
    input            reset,
    input            select,
    input            write,
    input      [1:0] address,
    inout      [7:0] bus,
    output           interrupt,
    input            rxd,
    output           txd
);
    reg  [7:0] divisor;
    wire       tick, tx_pop, tx_empty, tx_full, tx_busy;
    wire       rx_push, rx_empty, rx_full, rx_error;
    wire [7:0] tx_data, rx_data, rx_byte;
    reg  [7:0] answer;

    wire read    = select && !write;
    wire tx_push = select && write && address == 2'd0;
    wire rx_pop  = read && address == 2'd0;

    // Nobody drives the bus between two accesses: it is in high impedance then.
    assign bus       = read ? answer : 8'bz;
    assign interrupt = !rx_empty || rx_error;

    always @* begin
        // The first value is replaced within the same time step: no recorder may count it.
        answer = 8'hff;
        case (address)
            2'd0:    answer = rx_data;
            2'd1:    answer = {2'b00, rx_error, rx_full, rx_empty, tx_busy, tx_full, tx_empty};
            2'd2:    answer = divisor;
            default: answer = 8'h00;
        endcase
    end

    always @(posedge clk)
        if (reset) divisor <= 8'd3;
        else if (select && write && address == 2'd2) divisor <= bus;

    baud_generator baud (.clk(clk), .reset(reset), .divisor(divisor), .tick(tick));

    queue #(.ADDRESS_BITS(2)) tx_queue (
        .clk(clk), .reset(reset), .push(tx_push), .pop(tx_pop), .in(bus),
        .out(tx_data), .empty(tx_empty), .full(tx_full)
    );
    transmitter tx (
        .clk(clk), .reset(reset), .tick(tick), .empty(tx_empty), .data(tx_data),
        .pop(tx_pop), .line(txd), .busy(tx_busy)
    );
    receiver rx (
        .clk(clk), .reset(reset), .tick(tick), .line(rxd),
        .push(rx_push), .data(rx_byte), .error(rx_error)
    );
    queue #(.ADDRESS_BITS(1)) rx_queue (
        .clk(clk), .reset(reset), .push(rx_push), .pop(rx_pop), .in(rx_byte),
        .out(rx_data), .empty(rx_empty), .full(rx_full)
    );
endmodule
