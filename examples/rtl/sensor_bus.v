// SPDX-License-Identifier: Apache-2.0
// Two sensors share one bus through tri-state drivers; an arbiter gives them turns with an idle
// cycle between, and a collector adds up what they say.
`timescale 1ns / 1ps

// turn 1 and 2: the sensor of that number may drive; 0 and 3: nobody does.
module arbiter (
    input            clk,
    input            reset,
    output     [2:1] grant
);
    reg  [1:0] turn;
    wire [1:0] next_turn = turn + 2'd1;

    assign grant = {turn == 2'd2, turn == 2'd1};

    always @(posedge clk) turn <= reset ? 2'd0 : next_turn;
endmodule

// Counts in steps of its own and drives the count while it is granted.
module sensor #(
    parameter STEP = 1
) (
    input        clk,
    input        reset,
    input        grant,
    output [3:0] data
);
    reg  [3:0] count;
    wire [3:0] drive = grant ? count : 4'bz;

    assign data = drive;

    always @(posedge clk)
        if (reset) count <= 4'd0;
        else if (grant) count <= count + STEP;
endmodule

module collector (
    input            clk,
    input            reset,
    input            enable,
    input      [3:0] data,
    output reg [7:0] sum
);
    always @(posedge clk)
        if (reset) sum <= 8'd0;
        else if (enable) sum <= sum + data;
endmodule

module sensor_bus (
    input        clk,
    input        reset,
    output [7:0] sum
);
    wire [2:1] grant;
    wire [3:0] data;

    arbiter u_arbiter (.clk(clk), .reset(reset), .grant(grant));
    sensor #(.STEP(1)) u_low (.clk(clk), .reset(reset), .grant(grant[1]), .data(data));
    sensor #(.STEP(5)) u_high (.clk(clk), .reset(reset), .grant(grant[2]), .data(data));
    collector u_collector (.clk(clk), .reset(reset), .enable(|grant), .data(data), .sum(sum));
endmodule
