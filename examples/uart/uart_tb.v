// SPDX-License-Identifier: Apache-2.0
// Sends bytes through the serial port and back over a line that drops out for a moment, and checks
// what returns. With +vcd the waveform is dumped to uart.vcd.
`timescale 1ns / 1ps

module tb;
    reg         clk = 1'b0;
    reg         reset = 1'b1;
    reg         select = 1'b0;
    reg         write = 1'b0;
    reg  [1:0]  address = 2'd0;
    reg  [7:0]  out;
    reg         drop_out = 1'b0;
    wire [7:0]  bus = write ? out : 8'bz;
    wire        interrupt, txd;
    wire        rxd = drop_out ? 1'bx : txd;
    integer     received = 0;
    reg  [7:0]  sent, seed;

    uart dut (
        .clk(clk), .reset(reset), .select(select), .write(write), .address(address),
        .bus(bus), .interrupt(interrupt), .rxd(rxd), .txd(txd)
    );

    always #5 clk = !clk;

    task access(input is_write, input [1:0] at, input [7:0] value);
        begin
            @(negedge clk);
            select  = 1'b1;
            write   = is_write;
            address = at;
            out     = value;
            @(posedge clk);
            #1;
            select = 1'b0;
            write  = 1'b0;
        end
    endtask

    // The line is unknown for a moment while it idles at 1: a glitch, not a toggle.
    initial begin
        #3002 drop_out = 1'b1;
        #2 drop_out = 1'b0;
    end

    initial begin
        if ($test$plusargs("vcd")) begin
            $dumpfile("uart.vcd");
            $dumpvars(0, tb);
        end
        repeat (4) @(posedge clk);
        #1 reset = 1'b0;
        #4000 access(1'b1, 2'd2, 8'd1);
        seed = 8'h5a;
        repeat (12) begin
            sent = seed;
            access(1'b1, 2'd0, sent);
            wait (interrupt);
            @(negedge clk);
            select = 1'b1;
            #2 if (bus !== sent) $display("sent %h, received %h", sent, bus);
            else received = received + 1;
            @(posedge clk);
            #1 select = 1'b0;
            seed = {seed[6:0], seed[7] ^ seed[5] ^ seed[4] ^ seed[3]};
        end
        $display("%0d of 12 bytes came back", received);
        #500 $finish;
    end
endmodule
