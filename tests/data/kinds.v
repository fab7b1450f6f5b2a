// SPDX-License-Identifier: Apache-2.0
// Every kind of declaration that Icarus Verilog dumps; kinds.vcd is its output:
//     iverilog -g2012 -o kinds kinds.v && vvp kinds
`timescale 1ns/10ps
module stage(input clk, input [7:0] a, output reg [0:3] q, output y);
  assign y = ^a;
  always @(posedge clk) q <= a[3:0];
  task note;
    reg seen;
    seen = 1;
  endtask
  function inverted(input z);
    inverted = ~z;
  endfunction
endmodule

module kinds;
  reg clk = 0;
  reg [7:0] a = 0;
  wire [0:3] q;
  wire y;
  real level = 1.5;
  integer count;
  event tick;
  reg [7:0] mem [0:3];
  reg flags [0:1];
  wire \odd.name[3] ;
  wire [3:3] single;
  supply0 gnd;
  parameter WIDTH = 5;

  stage u1(.clk(clk), .a(a), .q(q), .y(y));
  genvar g;
  generate
    for (g = 0; g < 2; g = g + 1) begin : gen
      stage u(.clk(clk), .a(a), .q(), .y());
    end
  endgenerate
  assign \odd.name[3] = clk;
  assign single = clk;

  initial begin : main
    integer k;
    $dumpfile("kinds.vcd");
    $dumpvars(0, kinds);
    for (k = 0; k < 4; k = k + 1) $dumpvars(0, mem[k]);
    for (k = 0; k < 2; k = k + 1) $dumpvars(0, flags[k]);
    #10 a = 8'hzz;
    #10 a = 8'b1x;
    #5 $dumpoff;
    #5 $dumpon;
    #1 $dumpall;
    mem[2] = 3;
    -> tick;
    level = 2.5;
    count = 3;
    fork : both
      #3 mem[1] = 8'h80;
      #4 a = 8'h5a;
    join
    #10 $finish;
  end
  always #5 clk = ~clk;
endmodule
